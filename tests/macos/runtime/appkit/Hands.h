// What users and other programs do to the fakes, and what a test asks of them. Main thread only.
#pragma once

#import <AppKit/AppKit.h>
#include <string>
#include <vector>

// A button of the system's own.
@interface QXFakeButton : NSButton
+ (NSButton*)withTitle:(NSString*)title pressed:(void (^)(void))pressed;
@end

namespace quorin {

// The user drags the window, or one of its corners, to this frame.
void userMoves(NSWindow* window, NSRect frame);

// The user opens the menu and chooses the item. False when he cannot, because it is disabled or not
// there.
bool userChooses(NSMenu* menu, NSInteger index);
bool userChooses(NSMenu* menu, const std::string& title);  // as the menu is once it has opened

// What the combination of the command key and this one asks of who has the keys; empty: nothing.
std::string commandOfKey(const std::string& key);

// The menus of the items that stand in the menu bar now.
std::vector<NSMenu*> menusInTheBar();

// The user opens the application again, in the Finder or by its icon.
void userReopensApplication();

// Another application starts, comes to the front, ends. Identifiers of applications as the desktop
// knows them.
int startApplication(const std::string& identifier);
void bringForward(int process);
void endApplication(int process);
int frontProcess();  // any thread; 0: nobody

// Whether the desktop finds an Excel. Any thread.
void installExcel(bool installed);

// The alert that waits for an answer; nil: none does.
NSAlert* shownAlert();

// What NSWorkspace was asked to open.
std::vector<std::string> openedURLs();

// The images of the items in the menu bar.
std::vector<NSImage*> imagesInTheBar();

// The open alert is stopped, as by [NSApplication abortModal].
void stopAlert();

// With which options an application was last brought forward.
NSUInteger lastActivationOptions();

// Window and menu objects of the whole program, for counting.
std::size_t windowsAlive();

}  // namespace quorin
