// Where pkg-config says that the installed header is.
#ifndef DAROKLEIM_SWIFT_INSTALLEDCLIENT_CLIENT_H
#define DAROKLEIM_SWIFT_INSTALLEDCLIENT_CLIENT_H

#include <darokleim/client.h>

#endif  // DAROKLEIM_SWIFT_INSTALLEDCLIENT_CLIENT_H
