// What a test that goes wrong on purpose says beforehand.
#pragma once

namespace quorin {

// So many exceptions of Foundation's will be raised in this test; without a word, none may be.
void expectRaised(int count);

}  // namespace quorin
