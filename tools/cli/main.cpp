#include "tool.h"

int main(int argc, char** argv) {
  return darokleim::RunTool(argc, argv);
}
