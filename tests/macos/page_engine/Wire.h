// How the fake WKWebView and the page engine speak to each other: messages of one word and a text
// over a pair of sockets.
//
// To the engine:
//   script TEXT, handler NAME       what every page has; before anything is loaded
//   load SECONDS ADDRESS            0: waits as long as it takes
//   html TEXT, reload
//   run SCRIPT
//   ask NUMBER SCRIPT               answered with "value"
//   window WIDTH HEIGHT VISIBLE KEY where the page is shown; the last two are 0 or 1
//   answer NUMBER ALLOWED           to a question of the engine's
//   click X Y, key NAME             what the user does in the page; NAME as GDK has it, with
//                                   "ctrl+", "shift+", "alt+" before it
//
// From the engine:
//   started, finished, failed REASON, cut REASON, gone    how a load goes on; the page's process
//   go NUMBER HASFRAME ADDRESS      may it go there?
//   shown NUMBER CANSHOW            may this answer be loaded?
//   window                          a window was to be opened, and was not
//   device NUMBER                   may it use the camera?
//   message JSON                    the page has posted this
//   value NUMBER ok|error TEXT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quorin::wire {

struct Message {
  std::string word, text;
};

// False when the other one has hung up.
bool send(int socket, std::string_view word, std::string_view text);

// Waits for the next one; none when the other one has hung up.
std::optional<Message> receive(int socket);

// Takes the word before the first blank off the text.
std::string takeWord(std::string& text);

}  // namespace quorin::wire
