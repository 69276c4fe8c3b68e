// Preloaded into every program of a test: writes down which files they open, change or remove,
// which programs they start, which addresses they connect to and which names they look up.
//
// A line for each, in the file that QUORIN_REACHES names: process, program, call, object, parted by
// tabs. Any thread. The file is opened anew for each line, because a program may close all its
// descriptors. What a program does without the C library's calls stays unseen.
#include <arpa/inet.h>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <spawn.h>
#include <string>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// Standing in for a function of the C library, which is found by its name.
template <typename Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

void appendShown(std::string& line, const char* text) {
  for (; text != nullptr && *text != '\0'; ++text) {
    const bool parts = *text == '\n' || *text == '\t' || *text == '\r';
    line += parts ? ' ' : *text;
  }
}

void tell(const char* call, const std::string& object) {
  const int error = errno;
  const char* const file = std::getenv("QUORIN_REACHES");
  if (file != nullptr) {
    std::string line = std::to_string(::getpid()) + '\t';
    appendShown(line, program_invocation_short_name);
    line += '\t';
    line += call;
    line += '\t';
    appendShown(line, object.c_str());
    line += '\n';
    const long out =
        ::syscall(SYS_openat, AT_FDCWD, file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    if (out >= 0) {
      [[maybe_unused]] const long written = ::syscall(SYS_write, out, line.data(), line.size());
      ::syscall(SYS_close, out);
    }
  }
  errno = error;
}

std::string linkTarget(const std::string& link) {
  char target[4096];
  const ssize_t length = ::readlink(link.c_str(), target, sizeof target);
  return length < 0 ? std::string() : std::string(target, static_cast<std::size_t>(length));
}

// With the folder before it, if it is relative to one.
std::string whole(int folder, const char* path) {
  if (path == nullptr) return "(none)";
  if (*path == '/') return path;
  const std::string place = folder == AT_FDCWD
                                ? linkTarget("/proc/self/cwd")
                                : linkTarget("/proc/self/fd/" + std::to_string(folder));
  return place + "/" + path;
}

void tellFile(const char* call, const char* path, int folder = AT_FDCWD) {
  tell(call, whole(folder, path));
}

const char* opening(int flags) {
  const bool changes = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
  return changes ? "write" : "read";
}

const char* opening(const char* mode) {
  return mode != nullptr && std::strpbrk(mode, "wa+") != nullptr ? "write" : "read";
}

void tellAddress(const char* call, const sockaddr* address, socklen_t length) {
  if (address == nullptr) return;
  char text[INET6_ADDRSTRLEN] = "";
  if (address->sa_family == AF_UNIX) {
    const auto* const local = reinterpret_cast<const sockaddr_un*>(address);
    const std::size_t most = length > sizeof(sa_family_t) ? length - sizeof(sa_family_t) : 0;
    std::string path(local->sun_path, most);
    if (!path.empty() && path[0] == '\0') path[0] = '@';
    tell("local", path.c_str());
  } else if (address->sa_family == AF_INET) {
    const auto* const internet = reinterpret_cast<const sockaddr_in*>(address);
    ::inet_ntop(AF_INET, &internet->sin_addr, text, sizeof text);
    tell(call, std::string(text) + ":" + std::to_string(ntohs(internet->sin_port)));
  } else if (address->sa_family == AF_INET6) {
    const auto* const internet = reinterpret_cast<const sockaddr_in6*>(address);
    ::inet_ntop(AF_INET6, &internet->sin6_addr, text, sizeof text);
    tell(call, "[" + std::string(text) + "]:" + std::to_string(ntohs(internet->sin6_port)));
  }
}

mode_t modeOf(int flags, va_list more) {
  const bool makes = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
  return makes ? static_cast<mode_t>(va_arg(more, int)) : 0;
}

using Open = int(const char*, int, ...);
using OpenAt = int(int, const char*, int, ...);
using Open2 = int(const char*, int);
using OpenAt2 = int(int, const char*, int);
using FileOpen = FILE*(const char*, const char*);
using Exec = int(const char*, char* const[]);
using Spawn = int(pid_t*, const char*, const posix_spawn_file_actions_t*, const posix_spawnattr_t*,
                  char* const[], char* const[]);
using ExecEnvironment = int(const char*, char* const[], char* const[]);

}  // namespace

#define STANDS_FOR_OPEN(name)                        \
  int name(const char* path, int flags, ...) {       \
    va_list more;                                    \
    va_start(more, flags);                           \
    const mode_t mode = modeOf(flags, more);         \
    va_end(more);                                    \
    tellFile(opening(flags), path);                  \
    return original<Open>(#name)(path, flags, mode); \
  }
#define STANDS_FOR_OPENAT(name)                                \
  int name(int folder, const char* path, int flags, ...) {     \
    va_list more;                                              \
    va_start(more, flags);                                     \
    const mode_t mode = modeOf(flags, more);                   \
    va_end(more);                                              \
    tellFile(opening(flags), path, folder);                    \
    return original<OpenAt>(#name)(folder, path, flags, mode); \
  }
#define STANDS_FOR_FOPEN(name)                     \
  FILE* name(const char* path, const char* mode) { \
    tellFile(opening(mode), path);                 \
    return original<FileOpen>(#name)(path, mode);  \
  }

#undef open
#undef open64
#undef openat
#undef openat64
#undef fopen
#undef fopen64

extern "C" {

STANDS_FOR_OPEN(open)
STANDS_FOR_OPEN(open64)
STANDS_FOR_OPENAT(openat)
STANDS_FOR_OPENAT(openat64)
STANDS_FOR_FOPEN(fopen)
STANDS_FOR_FOPEN(fopen64)

int __open_2(const char* path, int flags) {
  tellFile(opening(flags), path);
  return original<Open2>("__open_2")(path, flags);
}
int __open64_2(const char* path, int flags) {
  tellFile(opening(flags), path);
  return original<Open2>("__open64_2")(path, flags);
}
int __openat_2(int folder, const char* path, int flags) {
  tellFile(opening(flags), path, folder);
  return original<OpenAt2>("__openat_2")(folder, path, flags);
}
int __openat64_2(int folder, const char* path, int flags) {
  tellFile(opening(flags), path, folder);
  return original<OpenAt2>("__openat64_2")(folder, path, flags);
}
int creat(const char* path, mode_t mode) {
  tellFile("write", path);
  return original<int(const char*, mode_t)>("creat")(path, mode);
}
int creat64(const char* path, mode_t mode) {
  tellFile("write", path);
  return original<int(const char*, mode_t)>("creat64")(path, mode);
}

int unlink(const char* path) noexcept {
  tellFile("remove", path);
  return original<int(const char*)>("unlink")(path);
}
int rename(const char* from, const char* to) noexcept {
  tellFile("remove", from);
  tellFile("write", to);
  return original<int(const char*, const char*)>("rename")(from, to);
}

int connect(int socket, const sockaddr* address, socklen_t length) {
  tellAddress("connect", address, length);
  return original<int(int, const sockaddr*, socklen_t)>("connect")(socket, address, length);
}
ssize_t sendto(int socket, const void* bytes, size_t count, int flags, const sockaddr* address,
               socklen_t length) {
  tellAddress("send", address, length);
  return original<ssize_t(int, const void*, size_t, int, const sockaddr*, socklen_t)>("sendto")(
      socket, bytes, count, flags, address, length);
}
int getaddrinfo(const char* node, const char* service, const addrinfo* hints, addrinfo** result) {
  tell("look up", node == nullptr ? "" : node);
  return original<int(const char*, const char*, const addrinfo*, addrinfo**)>("getaddrinfo")(
      node, service, hints, result);
}
hostent* gethostbyname(const char* name) {
  tell("look up", name);
  return original<hostent*(const char*)>("gethostbyname")(name);
}

int execve(const char* path, char* const arguments[], char* const variables[]) noexcept {
  tellFile("run", path);
  return original<ExecEnvironment>("execve")(path, arguments, variables);
}
int execv(const char* path, char* const arguments[]) noexcept {
  tellFile("run", path);
  return original<Exec>("execv")(path, arguments);
}
int execvp(const char* file, char* const arguments[]) noexcept {
  tell("run", file);
  return original<Exec>("execvp")(file, arguments);
}
int execvpe(const char* file, char* const arguments[], char* const variables[]) noexcept {
  tell("run", file);
  return original<ExecEnvironment>("execvpe")(file, arguments, variables);
}
int posix_spawn(pid_t* id, const char* path, const posix_spawn_file_actions_t* files,
                const posix_spawnattr_t* attributes, char* const arguments[],
                char* const variables[]) {
  tellFile("run", path);
  return original<Spawn>("posix_spawn")(id, path, files, attributes, arguments, variables);
}
int posix_spawnp(pid_t* id, const char* file, const posix_spawn_file_actions_t* files,
                 const posix_spawnattr_t* attributes, char* const arguments[],
                 char* const variables[]) {
  tell("run", file);
  return original<Spawn>("posix_spawnp")(id, file, files, attributes, arguments, variables);
}
int system(const char* command) {
  tell("run", command == nullptr ? "" : command);
  return original<int(const char*)>("system")(command);
}
FILE* popen(const char* command, const char* mode) {
  tell("run", command);
  return original<FileOpen>("popen")(command, mode);
}

}  // extern "C"
