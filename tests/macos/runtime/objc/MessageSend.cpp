// objc_msgSend for x86-64: finds the implementation with all argument registers kept, then jumps to
// it. A message to nothing answers zero. The receiver that was deallocated is told by its class.
#include "tests/macos/runtime/objc/Runtime.h"

namespace quorin::objc {

const char* nameOfDeallocated(const Object* object);  // nullptr while it lives

}  // namespace quorin::objc

using namespace quorin::objc;

extern "C" {

struct SuperMessage {
  Object* receiver;
  Class* kind;  // the class whose method sends; the search begins above it
};

Implementation quorin_lookUp(Object* receiver, Selector name) {
  if (const char* dead = nameOfDeallocated(receiver))
    breach("message '%s' to a deallocated %s", name, dead);
  if (isBlock(receiver)) breach("message '%s' to a block", name);
  if (const Implementation found = implementationOf(receiver->isa, name)) return found;
  breach("%c[%s %s]: unrecognized selector", receiver->isa->isMeta() ? '+' : '-',
         receiver->isa->data->name, name);
}

Implementation quorin_lookUpAbove(SuperMessage* message, Selector name) {
  if (const Implementation found = implementationOf(message->kind->super, name)) return found;
  breach("[super %s] in %s: unrecognized selector", name, message->kind->data->name);
}
}

// In the order of their numbers: where the receiver and the selector are, what is done first, which
// function finds the implementation, what is done before the jump.
#define QUORIN_SENDER(NAME, RECEIVER, SELECTOR, FIRST, FIND, LAST)                 \
  asm(".text\n.globl " NAME "\n.type " NAME ",@function\n" NAME ":\n" FIRST        \
      "push %rbp\nmov %rsp,%rbp\nsub $192,%rsp\n"                                  \
      "mov %rdi,0(%rsp)\nmov %rsi,8(%rsp)\nmov %rdx,16(%rsp)\nmov %rcx,24(%rsp)\n" \
      "mov %r8,32(%rsp)\nmov %r9,40(%rsp)\nmov %rax,48(%rsp)\n"                    \
      "movups %xmm0,64(%rsp)\nmovups %xmm1,80(%rsp)\nmovups %xmm2,96(%rsp)\n"      \
      "movups %xmm3,112(%rsp)\nmovups %xmm4,128(%rsp)\nmovups %xmm5,144(%rsp)\n"   \
      "movups %xmm6,160(%rsp)\nmovups %xmm7,176(%rsp)\n"                           \
      "mov " RECEIVER ",%r10\nmov " SELECTOR ",%rsi\nmov %r10,%rdi\ncall " FIND    \
      "@PLT\n"                                                                     \
      "mov %rax,%r11\n"                                                            \
      "movups 64(%rsp),%xmm0\nmovups 80(%rsp),%xmm1\nmovups 96(%rsp),%xmm2\n"      \
      "movups 112(%rsp),%xmm3\nmovups 128(%rsp),%xmm4\nmovups 144(%rsp),%xmm5\n"   \
      "movups 160(%rsp),%xmm6\nmovups 176(%rsp),%xmm7\n"                           \
      "mov 0(%rsp),%rdi\nmov 8(%rsp),%rsi\nmov 16(%rsp),%rdx\nmov 24(%rsp),%rcx\n" \
      "mov 32(%rsp),%r8\nmov 40(%rsp),%r9\nmov 48(%rsp),%rax\n"                    \
      "mov %rbp,%rsp\npop %rbp\n" LAST                                             \
      "jmp *%r11\n"                                                                \
      "1: xor %eax,%eax\nxor %edx,%edx\npxor %xmm0,%xmm0\npxor %xmm1,%xmm1\nret\n" \
      "2: mov %rdi,%rax\nret\n"                                                    \
      ".size " NAME ",.-" NAME "\n");

QUORIN_SENDER("objc_msgSend", "%rdi", "%rsi", "test %rdi,%rdi\njz 1f\n", "quorin_lookUp", "")
// The place for a large answer comes first; clang clears it when the receiver may be nothing.
QUORIN_SENDER("objc_msgSend_stret", "%rsi", "%rdx", "test %rsi,%rsi\njz 2f\n", "quorin_lookUp", "")
QUORIN_SENDER("objc_msgSendSuper2", "%rdi", "%rsi", "", "quorin_lookUpAbove", "mov (%rdi),%rdi\n")
