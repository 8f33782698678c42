// Where pkg-config says that the installed header is.
#include <darokleim/client.h>
