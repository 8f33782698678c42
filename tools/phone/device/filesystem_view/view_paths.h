#ifndef DAROKLEIM_TOOLS_PHONE_DEVICE_FILESYSTEM_VIEW_VIEW_PATHS_H
#define DAROKLEIM_TOOLS_PHONE_DEVICE_FILESYSTEM_VIEW_VIEW_PATHS_H

// What the view reads, as paths inside the phone; the server writes them. Valid C and C++.
#define VIEW_OWNERS "/dev/.setup/owners"
#define VIEW_MOUNTS "/dev/.setup/mounts"
#define VIEW_FULL_STORAGE "/dev/.setup/faults/full-storage"
#define VIEW_FREE_SPACE "/dev/.setup/faults/free-space"

// Where the view itself is inside the phone, and the file that makes the loader take it.
#define VIEW_LIBRARY "/system/lib64/libphone_view.so"
#define VIEW_PRELOAD "/etc/ld.so.preload"

#endif  // DAROKLEIM_TOOLS_PHONE_DEVICE_FILESYSTEM_VIEW_VIEW_PATHS_H
