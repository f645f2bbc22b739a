// SPDX-License-Identifier: BSD-3-Clause
// Everything that the operating system offers, as free functions: descriptors, files, processes,
// threads. One source file a platform implements it, and is the only one that sees platform
// headers.
//
// Texts that name files are bytes in the system's own encoding (UTF-8 on Linux, the active code
// page on Windows), as they arrive in command lines.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace odbs::port {

// ---- Descriptors ----

// One read of at most `size` bytes. Returns the bytes read, 0 at the end of input, or -1 with errno
// set, also for an interruption (EINTR). Waits for input even where `fd` does not block.
long readOnce(int fd, void* buffer, std::size_t size);

// One write of at most `size` bytes; may write fewer. Returns the bytes written or -1 with errno
// set, also for an interruption. Waits for room even where `fd` does not block.
long writeOnce(int fd, const void* buffer, std::size_t size);

// Writes all `size` bytes, continuing short and interrupted writes. Returns false when a write
// fails for another reason; the bytes before it have left.
bool writeAll(int fd, const void* buffer, std::size_t size);

// Turns line-end translation off (Windows); nothing elsewhere.
void setBinaryMode(int fd);

// Writing to a pipe whose reader is gone becomes an error of the write instead of a signal.
void ignoreBrokenPipe();

// Writing beyond the largest file size allowed becomes an error of the write instead of a signal.
void ignoreFileSizeLimit();

// Asks for a pipe capacity in bytes; the system may refuse or round. Returns what is in force, or
// -1 where it cannot be asked.
long setPipeCapacity(int fd, long bytes);

// Waits until `fd`, a pipe's reading end, has bytes or its end. Returns false when `timeoutMs`
// milliseconds pass without either; a negative time-out waits for ever.
bool waitReadable(int fd, int timeoutMs);

// Closes the descriptor; the result is ignored.
void closeDescriptor(int fd);

// True when the descriptor is a terminal.
bool isTerminal(int fd);

// ---- Files ----

// What is compared to detect that a file changed.
struct FileStatus {
  bool exists = false;                // false: everything else is 0
  bool isRegular = false;             // an ordinary file: no folder, pipe or device
  std::int64_t modificationTime = 0;  // opaque unit, as fine as the file system gives; comparable
  std::int64_t modificationSeconds = 0;  // the same in whole seconds
  std::int64_t size = 0;                 // bytes
  std::uint16_t inode = 0;               // low 16 bits of the inode number; always 0 on Windows
};

// The status of the file at `path`; of the file that a symbolic link names, not of the link.
FileStatus fileStatus(const std::string& path);

// True when the name is taken by something other than an ordinary file: a folder, a pipe, a device,
// or a link, wherever it leads.
bool isTakenByOther(const std::string& path);

// Deletes a file. Returns false when it could not (also when there is none).
bool removeFile(const std::string& path);

// Renames a file without replacing on Windows, replacing on Linux. Returns 0 or an errno value.
int renameFile(const std::string& from, const std::string& to);

// Renames a file and replaces an existing target on both platforms, atomically where the system
// can. Returns 0 or an errno value.
int replaceFile(const std::string& from, const std::string& to);

// Makes an empty file. Returns false when it exists already or cannot be made; of several processes
// that try at once, one succeeds.
bool createExclusively(const std::string& path);

// Makes a file and opens it for reading and writing. Returns a descriptor that is not inherited, or
// -1 with errno: EEXIST for anything that has the name already, be it a symbolic link, which is not
// followed, or a pipe, which is not waited for.
int openNew(const std::string& path);

// Opens an ordinary file that exists, to be read or to be read and written. Returns a descriptor
// that is not inherited, or -1 with errno; never waits.
int openExisting(const std::string& path, bool writable);

// The status of the open file.
FileStatus descriptorStatus(int fd);

// Reads at an offset in bytes. Returns the bytes read, fewer than `size` only
// at the end of the file, or -1 with errno.
long long readAt(int fd, std::int64_t place, void* buffer, std::size_t size);

// Writes everything at an offset. Returns false with errno set.
bool writeAt(int fd, std::int64_t place, const void* buffer, std::size_t size);

// Cuts the file to `size` bytes, or fills it up with zeros. Returns false with errno set.
bool setFileSize(int fd, std::int64_t size);

// A second descriptor of the same open file, or -1.
int duplicateDescriptor(int fd);

// Makes the open file's bytes durable. Returns false with errno set.
bool syncDescriptor(int fd);

// Makes a rename within the folder of `path` durable, where a file system can.
void syncFolderOf(const std::string& path);

// A file under a temporary name: deleted by the destructor, and by an interruption once
// removeUnfinishedWhenInterrupted() was called, unless keep() was called before.
class UnfinishedFile {
 public:
  explicit UnfinishedFile(const std::string& path);
  ~UnfinishedFile();
  UnfinishedFile(const UnfinishedFile&) = delete;
  UnfinishedFile& operator=(const UnfinishedFile&) = delete;
  const std::string& path() const { return path_; }
  // The file got its final name.
  void keep();

 private:
  static constexpr int kUnlisted = -1;
  std::string path_;
  int slot_ = kUnlisted;  // in the list that an interruption goes through
  bool kept_ = false;
};

// Makes a file that does not exist yet and opens it for binary writing. It is ours while a
// descriptor of it is open: removeUnclaimed leaves it alone. Returns a descriptor that is not
// inherited, or -1.
int createClaimed(const std::string& path);

// Deletes an ordinary file that its writer did not delete. Returns false, and touches nothing, when
// a process still has it claimed or the name is taken by something else.
bool removeUnclaimed(const std::string& path);

// True when `path` is a name of this open file, not of another one and not of a link to it.
bool isNameOf(const std::string& path, int fd);

// Renames a file that createClaimed made, as renameFile does, unless `from` has become the name of
// another one. The file is ours up to the renaming as far as the system lets it; no other file is
// left under the name `to`. Closes `fd`. Returns 0 or an errno value.
int renameClaimed(int fd, const std::string& from, const std::string& to);

// Deletes the file that createClaimed made under this name, unless the name has become that of
// another one. Closes `fd`; -1 deletes nothing.
void discardClaimed(int fd, const std::string& path);

// From now on an interruption from the keyboard, a closed terminal and a request to end (SIGINT,
// SIGHUP, SIGTERM; console events on Windows) delete all unfinished files before they end the
// process.
void removeUnfinishedWhenInterrupted();

// True where a file that is open can be replaced by renaming another one over it.
bool openFilesCanBeReplaced();

// The network ("universal") name of a path on a mapped drive. Returns an empty text when there is
// none, which is always so on Linux.
std::string universalName(const std::string& path);

// The path of the running program.
std::string executablePath();

// ---- Processes ----

int currentProcessId();

// Ends the process at once with `status`: no static destructors, no exit handlers, no flushing.
[[noreturn]] void endProcess(int status);

// A process to be waited for. Value type; the handle is never closed, it lives until our own end.
struct WatchedProcess {
  std::intptr_t handle =
      -1;      // a process handle (Windows) or a pidfd (Linux); -1: could not be opened
  int id = 0;  // process id; used only where the handle could not be had
};

// Opens a process for waiting. Opening fails for a process that does not exist; waiting for it then
// returns at once.
WatchedProcess openProcess(int id);

// Blocks until the process has ended; returns at once when it could not be opened.
void waitForEnd(const WatchedProcess& process);

// True when the process has ended, or never was.
bool hasEnded(const WatchedProcess& process);

// A child started with `startWithPipes`.
struct Child {
  int id = 0;                 // process id
  std::intptr_t handle = -1;  // process handle on Windows
  int toChild = -1;           // descriptor: what is written here, the child reads
  int fromChild = -1;         // descriptor: what the child writes
};

// Starts `program` with two pipes and the arguments made from `arguments` by replacing "{in}" and
// "{out}" by the numbers of the descriptors that the child inherits. Standard error is inherited
// too. Throws std::runtime_error, naming the program and the reason.
Child startWithPipes(const std::string& program, const std::vector<std::string>& arguments);

// Waits until the child ended. Returns its exit status, 128 + n when signal n ended it, or -1 when
// `timeoutMs` milliseconds passed (a negative time-out waits for ever). The child is reaped once;
// a second call returns -1.
int waitForChild(Child& child, int timeoutMs);

// Ends a process at once, without any clean-up.
void killProcess(const Child& child);

// ---- Threads, memory ----

// Starts a detached thread, with a stack of `stackBytes` (raised to the system's
// minimum). Returns false when it could not be started.
bool startThread(void (*function)(void*), void* argument, std::size_t stackBytes);

// Suspends the calling thread.
void sleepMs(int milliseconds);

// Asks for large pages in fresh memory, where the system has them and nothing has been touched yet.
void preferLargePages(void* memory, std::size_t bytes);

// From now on large blocks of memory go back to the system when they are freed, whatever their
// order: for programs whose large arrays follow each other. The system's allocator may do so
// anyway.
void returnLargeBlocks();

// The largest resident memory of this process so far, in bytes.
std::int64_t peakMemory();

// The largest resident memory of a running child so far, in bytes; -1 when it cannot be asked.
std::int64_t peakMemoryOf(const Child& child);

}  // namespace odbs::port
