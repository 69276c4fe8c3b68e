// The numbers with which Apple events and scripts fail, as AppleScript and Excel give them. What a
// Spreadsheet, the script engine and the handlers fail with is one of these.
#pragma once

namespace quorin::eventErrors {

inline constexpr int badParameter = -50;
inline constexpr int outOfMemory = -108;
inline constexpr int userCancelled = -128;
inline constexpr int notRunning = -600;      // the program is not there, or is quitting
inline constexpr int connectionLost = -609;  // the program ended during the call
inline constexpr int cannotCoerce = -1700;
inline constexpr int notUnderstood = -1708;  // no such command for such an object
inline constexpr int timedOut = -1712;
inline constexpr int missingParameter = -1715;
inline constexpr int wrongArguments = -1721;
inline constexpr int invalidComparison = -1726;
inline constexpr int noSuchObject = -1728;
inline constexpr int notPermitted = -1743;         // the user has not allowed Apple events
inline constexpr int wouldRequireConsent = -1744;  // the user has not been asked yet
inline constexpr int general = -2700;              // a script's own error
inline constexpr int divideByZero = -2701;
inline constexpr int tooLarge = -2702;
inline constexpr int stackOverflow = -2706;
inline constexpr int undefinedVariable = -2753;
inline constexpr int noResult = -2763;
inline constexpr int handlerFailed = -10000;  // the program cannot do it now, or at all
inline constexpr int notModifiable = -10006;
inline constexpr int badContainer = -10024;

}  // namespace quorin::eventErrors
