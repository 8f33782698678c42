#include "tools/cli/tool.h"

int main(int argc, char** argv) {
  return darokleim::cli::RunTool(argc, argv);
}
