// How often this process asks offices something and waits for the answer, over all connections.
#pragma once

namespace quorin::host::calc {

int officeQuestions();

}  // namespace quorin::host::calc
