// How many objects of each class are alive, so that a test can say that it left none.
#pragma once

#include <map>
#include <string>

namespace quorin::objc {

struct Object;

// By the classes' names; some may be 0. Blocks on the heap count as "block".
std::map<std::string, long> census();

// For what lives as long as the program, like Apple's shared objects.
void exemptFromCensus(Object* object);

std::map<std::string, long> aliveByClass();  // without blocks
long aliveBlocks();

}  // namespace quorin::objc
