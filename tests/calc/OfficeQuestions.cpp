#include "tests/calc/OfficeQuestions.h"

#include <atomic>
#include <cstdint>
#include <sys/socket.h>
#include <sys/types.h>

namespace {

std::atomic<int> questions = 0;

// True for a block of UNO's remote protocol that is a request, and not the release of an object,
// which nobody answers. Before its only message it has two numbers of four bytes, its length first.
bool isQuestion(const std::uint8_t* block, std::size_t size) {
  constexpr std::size_t header = 8;
  constexpr unsigned isLong = 0x80, isRequest = 0x40, hasMoreFlags = 0x01, isWide = 0x04;
  constexpr unsigned release = 2;
  if (size < header + 2) return false;
  std::size_t length = 0;
  for (int i = 0; i < 4; ++i) length = length << 8 | block[i];
  if (length != size - header) return false;
  const unsigned flags = block[header];
  if ((flags & isLong) == 0) return flags != release;
  if ((flags & isRequest) == 0) return false;
  const std::size_t method = header + ((flags & hasMoreFlags) != 0 ? 2 : 1);
  return (flags & isWide) != 0 || method >= size || block[method] != release;
}

}  // namespace

// In place of the C library's, by which UNO alone sends.
extern "C" ssize_t send(int socket, const void* bytes, std::size_t size, int flags) {
  if (isQuestion(static_cast<const std::uint8_t*>(bytes), size)) ++questions;
  return ::sendto(socket, bytes, size, flags, nullptr, 0);
}

namespace quorin::host::calc {

int officeQuestions() {
  return questions;
}

}  // namespace quorin::host::calc
