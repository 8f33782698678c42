/* Preloaded into a program: records which files it syncs and renames, in the order in which it does so.

   A line for each in the file that DAROKLEIM_SYNC_RECORD names: `sync FILE` or `rename FILE NAME`, where FILE is the number
   of the inode and NAME the last name of the new path. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static void Record(const char* line) {
  const char* const path = getenv("DAROKLEIM_SYNC_RECORD");
  if (path == NULL) return;
  const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (file < 0 || write(file, line, strlen(line)) < 0) abort();
  close(file);
}

static void RecordRename(int folder, const char* from, const char* to) {
  struct stat status;
  if (fstatat(folder, from, &status, AT_SYMLINK_NOFOLLOW) != 0) return;
  const char* const slash = strrchr(to, '/');
  char line[512];
  snprintf(line, sizeof line, "rename %llu %s\n", (unsigned long long)status.st_ino,
           slash == NULL ? to : slash + 1);
  Record(line);
}

int fsync(int file) {
  struct stat status;
  if (fstat(file, &status) == 0) {
    char line[64];
    snprintf(line, sizeof line, "sync %llu\n", (unsigned long long)status.st_ino);
    Record(line);
  }
  int (*real)(int);
  *(void**)&real = dlsym(RTLD_NEXT, "fsync");
  return real(file);
}

int rename(const char* from, const char* to) {
  RecordRename(AT_FDCWD, from, to);
  int (*real)(const char*, const char*);
  *(void**)&real = dlsym(RTLD_NEXT, "rename");
  return real(from, to);
}

int renameat(int from_folder, const char* from, int to_folder, const char* to) {
  RecordRename(from_folder, from, to);
  int (*real)(int, const char*, int, const char*);
  *(void**)&real = dlsym(RTLD_NEXT, "renameat");
  return real(from_folder, from, to_folder, to);
}

int renameat2(int from_folder, const char* from, int to_folder, const char* to, unsigned flags) {
  RecordRename(from_folder, from, to);
  int (*real)(int, const char*, int, const char*, unsigned);
  *(void**)&real = dlsym(RTLD_NEXT, "renameat2");
  return real(from_folder, from, to_folder, to, flags);
}
