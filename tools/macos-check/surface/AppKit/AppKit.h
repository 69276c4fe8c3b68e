#pragma once
#include "../Foundation/Foundation.h"
NS_ASSUME_NONNULL_BEGIN
@class NSStatusItem, NSWindow, NSMenu, NSImage, NSEvent, NSScreen, NSColor, NSAppearance, NSButton,
    NSView, NSViewController, NSUndoManager, NSGraphicsContext, NSAttributedString,
    NSRunningApplication, NSStatusBar, NSStatusBarButton, NSMenuItem, NSWorkspaceOpenConfiguration,
    NSApplication;
@protocol NSApplicationDelegate, NSWindowDelegate, NSMenuDelegate;
typedef NSString* NSWindowFrameAutosaveName;
typedef NSString* NSStatusItemAutosaveName;
typedef NSString* NSPasteboardType;
typedef NSString* NSAppearanceName;
typedef NSString* NSImageName;
typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
  NSApplicationActivationPolicyRegular = 0,
  NSApplicationActivationPolicyAccessory = 1,
  NSApplicationActivationPolicyProhibited = 2
};
typedef NS_OPTIONS(NSUInteger, NSApplicationActivationOptions) {
  NSApplicationActivateAllWindows = 1,
  NSApplicationActivateIgnoringOtherApps = 2
};
typedef NS_ENUM(NSUInteger, NSApplicationTerminateReply) {
  NSTerminateCancel = 0,
  NSTerminateNow = 1,
  NSTerminateLater = 2
};
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
  NSWindowStyleMaskBorderless = 0,
  NSWindowStyleMaskTitled = 1,
  NSWindowStyleMaskClosable = 2,
  NSWindowStyleMaskMiniaturizable = 4,
  NSWindowStyleMaskResizable = 8,
  NSWindowStyleMaskFullSizeContentView = 32768,
  NSWindowStyleMaskUtilityWindow = 16,
  NSWindowStyleMaskDocModalWindow = 64,
  NSWindowStyleMaskNonactivatingPanel = 128,
  NSWindowStyleMaskHUDWindow = 8192
};
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
  NSWindowCollectionBehaviorDefault = 0,
  NSWindowCollectionBehaviorCanJoinAllSpaces = 1,
  NSWindowCollectionBehaviorMoveToActiveSpace = 2,
  NSWindowCollectionBehaviorManaged = 4,
  NSWindowCollectionBehaviorTransient = 8,
  NSWindowCollectionBehaviorStationary = 16,
  NSWindowCollectionBehaviorParticipatesInCycle = 32,
  NSWindowCollectionBehaviorIgnoresCycle = 64,
  NSWindowCollectionBehaviorFullScreenPrimary = 128,
  NSWindowCollectionBehaviorFullScreenAuxiliary = 256,
  NSWindowCollectionBehaviorFullScreenNone = 512
};
typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSNormalWindowLevel = 0, NSFloatingWindowLevel = 3,
                           NSSubmenuWindowLevel = 3, NSTornOffMenuWindowLevel = 3,
                           NSMainMenuWindowLevel = 24, NSStatusWindowLevel = 25,
                           NSModalPanelWindowLevel = 8, NSPopUpMenuWindowLevel = 101;
typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) {
  NSWindowTitleVisible = 0,
  NSWindowTitleHidden = 1
};
typedef NS_ENUM(NSInteger, NSWindowAnimationBehavior) {
  NSWindowAnimationBehaviorDefault = 0,
  NSWindowAnimationBehaviorNone = 2,
  NSWindowAnimationBehaviorUtilityWindow = 4
};
typedef NS_ENUM(NSInteger, NSWindowTabbingMode) {
  NSWindowTabbingModeAutomatic = 0,
  NSWindowTabbingModePreferred = 1,
  NSWindowTabbingModeDisallowed = 2
};
typedef NS_ENUM(NSUInteger, NSWindowSharingType) {
  NSWindowSharingNone = 0,
  NSWindowSharingReadOnly = 1
};
typedef NS_ENUM(NSUInteger, NSWindowButton) {
  NSWindowCloseButton = 0,
  NSWindowMiniaturizeButton = 1,
  NSWindowZoomButton = 2
};
typedef NSInteger NSModalResponse;
static const NSModalResponse NSModalResponseCancel = 0, NSModalResponseOK = 1,
                             NSModalResponseStop = -1000, NSModalResponseAbort = -1001,
                             NSModalResponseContinue = -1002, NSAlertFirstButtonReturn = 1000,
                             NSAlertSecondButtonReturn = 1001, NSAlertThirdButtonReturn = 1002;
typedef NS_ENUM(NSUInteger, NSAlertStyle) {
  NSAlertStyleWarning = 0,
  NSAlertStyleInformational = 1,
  NSAlertStyleCritical = 2
};
typedef NSInteger NSControlStateValue;
static const NSControlStateValue NSControlStateValueMixed = -1, NSControlStateValueOff = 0,
                                 NSControlStateValueOn = 1;
typedef NS_ENUM(NSUInteger, NSCellImagePosition) {
  NSNoImage = 0,
  NSImageOnly = 1,
  NSImageLeft = 2,
  NSImageLeading = 7
};
typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) {
  NSViewNotSizable = 0,
  NSViewMinXMargin = 1,
  NSViewWidthSizable = 2,
  NSViewMaxXMargin = 4,
  NSViewMinYMargin = 8,
  NSViewHeightSizable = 16,
  NSViewMaxYMargin = 32
};
typedef NS_OPTIONS(NSUInteger, NSStatusItemBehavior) {
  NSStatusItemBehaviorRemovalAllowed = 2,
  NSStatusItemBehaviorTerminationOnRemoval = 4
};
static const CGFloat NSVariableStatusItemLength = -1.0, NSSquareStatusItemLength = -2.0;
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) {
  NSEventModifierFlagCapsLock = 65536,
  NSEventModifierFlagShift = 131072,
  NSEventModifierFlagControl = 262144,
  NSEventModifierFlagOption = 524288,
  NSEventModifierFlagCommand = 1048576,
  NSEventModifierFlagDeviceIndependentFlagsMask = 4294901760
};
typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeLeftMouseDown = 1,
  NSEventTypeKeyDown = 10,
  NSEventTypeApplicationDefined = 15
};
typedef NS_OPTIONS(unsigned long long, NSEventMask) {
  NSEventMaskKeyDown = 1024,
  NSEventMaskAny = 18446744073709551615ULL
};
@protocol NSMenuItemValidation <NSObject>
- (BOOL)validateMenuItem:(NSMenuItem*)menuItem;
@end
@interface NSResponder : NSObject
@property(strong, nullable) NSResponder* nextResponder;
- (void)keyDown:(NSEvent*)event;
- (void)cancelOperation:(nullable id)sender;  // from NSStandardKeyBindingResponding
@end
@interface NSApplication : NSResponder <NSMenuItemValidation>
@property(class, strong, readonly) NSApplication* sharedApplication;
@property(weak, nullable) id<NSApplicationDelegate> delegate;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (NSApplicationActivationPolicy)activationPolicy;
- (void)activate API_AVAILABLE(macos(14.0));
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps;
@property(readonly, getter=isActive) BOOL active;
- (void)deactivate;
- (void)hide:(nullable id)sender;
- (void)run;
- (void)stop:(nullable id)sender;
- (void)terminate:(nullable id)sender;
- (void)finishLaunching;
- (void)replyToApplicationShouldTerminate:(BOOL)shouldTerminate;
@property(strong, nullable) NSMenu* mainMenu;
@property(weak, readonly, nullable) NSWindow* keyWindow;
@property(copy, readonly) NSArray<NSWindow*>* windows;
@property(strong, nullable) NSImage* applicationIconImage;
- (void)orderFrontStandardAboutPanel:(nullable id)sender;
- (BOOL)sendAction:(SEL)action to:(nullable id)target from:(nullable id)sender;
- (nullable NSEvent*)nextEventMatchingMask:(NSEventMask)mask
                                 untilDate:(nullable NSDate*)expiration
                                    inMode:(NSRunLoopMode)mode
                                   dequeue:(BOOL)deqFlag;
- (void)postEvent:(NSEvent*)event atStart:(BOOL)atStart;
- (void)sendEvent:(NSEvent*)event;
- (NSModalResponse)runModalForWindow:(NSWindow*)window;
- (void)stopModalWithCode:(NSModalResponse)returnCode;
@property(readonly, strong) NSAppearance* effectiveAppearance;  // NSAppearanceCustomization
@end
@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationWillFinishLaunching:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender
                    hasVisibleWindows:(BOOL)hasVisibleWindows;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)app;
- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls;
- (void)applicationDidBecomeActive:(NSNotification*)notification;
@end
@interface NSView : NSResponder
- (instancetype)initWithFrame:(NSRect)frameRect;
@property(readonly, nullable) NSWindow* window;
@property(readonly, nullable) NSView* superview;
@property(copy) NSArray<NSView*>* subviews;
@property NSRect frame;
@property NSRect bounds;
@property(getter=isHidden) BOOL hidden;
@property NSAutoresizingMaskOptions autoresizingMask;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
@property BOOL needsDisplay;
@property(copy, nullable) NSString* toolTip;
@end
@interface NSControl : NSView
@property(weak, nullable) id target;
@property(nullable) SEL action;
@property NSInteger tag;
@property(getter=isEnabled) BOOL enabled;
@property(copy) NSString* stringValue;
- (void)performClick:(nullable id)sender;
@end
@interface NSButton : NSControl
@property(copy) NSString* title;
@property(strong, nullable) NSImage* image;
@property NSCellImagePosition imagePosition;
@property NSControlStateValue state;
@property(copy) NSString* keyEquivalent;
@end
@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)stringValue;
@end
@interface NSStatusBar : NSObject
@property(class, strong, readonly) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@property(readonly) CGFloat thickness;
@end
@interface NSStatusItem : NSObject
@property(weak, readonly, nullable) NSStatusBar* statusBar;
@property CGFloat length;
@property(strong, nullable) NSMenu* menu;
@property(strong, readonly, nullable) NSStatusBarButton* button;
@property(assign) NSStatusItemBehavior behavior;
@property(assign, getter=isVisible) BOOL visible;
@property(copy, null_resettable) NSStatusItemAutosaveName autosaveName;
@end
@interface NSStatusBarButton : NSButton
@property BOOL appearsDisabled;
@end
@interface NSMenu : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title;
@property(copy) NSString* title;
- (void)addItem:(NSMenuItem*)newItem;
- (void)insertItem:(NSMenuItem*)newItem atIndex:(NSInteger)index;
- (NSMenuItem*)addItemWithTitle:(NSString*)string
                         action:(nullable SEL)selector
                  keyEquivalent:(NSString*)charCode;
- (void)removeItem:(NSMenuItem*)item;
- (void)removeItemAtIndex:(NSInteger)index;
- (void)removeAllItems;
@property(copy) NSArray<NSMenuItem*>* itemArray;
@property(readonly) NSInteger numberOfItems;
- (nullable NSMenuItem*)itemAtIndex:(NSInteger)index;
- (nullable NSMenuItem*)itemWithTag:(NSInteger)tag;
- (void)setSubmenu:(nullable NSMenu*)menu forItem:(NSMenuItem*)item;
@property BOOL autoenablesItems;
@property(weak, nullable) id<NSMenuDelegate> delegate;
- (void)update;
- (BOOL)popUpMenuPositioningItem:(nullable NSMenuItem*)item
                      atLocation:(NSPoint)location
                          inView:(nullable NSView*)view;
- (void)cancelTracking;
@property CGFloat minimumWidth;
@end
@protocol NSMenuDelegate <NSObject>
@optional
- (void)menuNeedsUpdate:(NSMenu*)menu;
- (void)menuWillOpen:(NSMenu*)menu;
- (void)menuDidClose:(NSMenu*)menu;
@end
@interface NSMenuItem : NSObject <NSCopying>
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode;
@property(copy) NSString* title;
@property(copy, nullable) NSAttributedString* attributedTitle;
@property(readonly, getter=isSeparatorItem) BOOL separatorItem;
@property(readonly) BOOL hasSubmenu;
@property(strong, nullable) NSMenu* submenu;
@property(copy) NSString* keyEquivalent;
@property NSEventModifierFlags keyEquivalentModifierMask;
@property(strong, nullable) NSImage* image;
@property NSControlStateValue state;
@property(getter=isEnabled) BOOL enabled;
@property(getter=isHidden) BOOL hidden;
@property(weak, nullable) id target;
@property(nullable) SEL action;
@property NSInteger tag;
@property(strong, nullable) id representedObject;
@property(copy, nullable) NSString* toolTip;
@property NSInteger indentationLevel;
@property(getter=isAlternate) BOOL alternate;
@end
@interface NSWindow : NSResponder <NSMenuItemValidation>
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag;
@property(copy) NSString* title;
@property(copy) NSString* subtitle;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL titlebarAppearsTransparent;
@property(strong, nullable) NSView* contentView;
@property(strong, nullable) NSViewController* contentViewController;
@property(weak, nullable) id<NSWindowDelegate> delegate;
@property NSWindowStyleMask styleMask;
@property(readonly) NSRect frame;
@property NSSize minSize;
@property NSSize maxSize;
@property NSSize contentMinSize;
- (void)setFrame:(NSRect)frameRect display:(BOOL)flag;
- (void)setFrame:(NSRect)frameRect display:(BOOL)displayFlag animate:(BOOL)animateFlag;
- (void)setFrameOrigin:(NSPoint)point;
- (void)setFrameTopLeftPoint:(NSPoint)point;
- (void)setContentSize:(NSSize)size;
- (void)center;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderFront:(nullable id)sender;
- (void)orderOut:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)close;
- (void)performClose:(nullable id)sender;
- (void)makeKeyWindow;
- (void)resignKeyWindow;
- (void)becomeKeyWindow;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL hidesOnDeactivate;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly, getter=isKeyWindow) BOOL keyWindow;
@property(readonly, getter=isMainWindow) BOOL mainWindow;
@property(readonly) BOOL canBecomeKeyWindow;
@property(readonly) BOOL canBecomeMainWindow;
@property(weak, nullable) NSView* initialFirstResponder;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
@property(weak, readonly, nullable) NSResponder* firstResponder;
@property(strong, readonly, nullable) NSScreen* screen;
@property(copy, null_resettable) NSColor* backgroundColor;
@property(getter=isOpaque) BOOL opaque;
@property BOOL hasShadow;
@property CGFloat alphaValue;
@property(getter=isMovableByWindowBackground) BOOL movableByWindowBackground;
@property(getter=isRestorable) BOOL restorable;
@property NSWindowAnimationBehavior animationBehavior;
@property(readonly) NSInteger windowNumber;
@property(readonly) CGFloat backingScaleFactor;
@property(readonly, getter=isMiniaturized) BOOL miniaturized;
@property(getter=isExcludedFromWindowsMenu) BOOL excludedFromWindowsMenu;
@property(readonly) BOOL inLiveResize;
@property NSWindowTabbingMode tabbingMode;
@property NSWindowSharingType sharingType;
- (BOOL)setFrameAutosaveName:(NSWindowFrameAutosaveName)name;
@property(copy, readonly) NSWindowFrameAutosaveName frameAutosaveName;
- (void)saveFrameUsingName:(NSWindowFrameAutosaveName)name;
- (BOOL)setFrameUsingName:(NSWindowFrameAutosaveName)name;
+ (void)removeFrameUsingName:(NSWindowFrameAutosaveName)name;
- (nullable NSButton*)standardWindowButton:(NSWindowButton)b;
- (void)beginSheet:(NSWindow*)sheetWindow
    completionHandler:(void (^_Nullable)(NSModalResponse))handler;
- (void)endSheet:(NSWindow*)sheetWindow returnCode:(NSModalResponse)returnCode;
- (NSRect)convertRectToScreen:(NSRect)rect;
@property(nullable, strong) NSAppearance* appearance;  // NSAppearanceCustomization
@end
@protocol NSWindowDelegate <NSObject>
@optional
- (BOOL)windowShouldClose:(NSWindow*)sender;
- (void)windowWillClose:(NSNotification*)notification;
- (void)windowDidBecomeKey:(NSNotification*)notification;
- (void)windowDidResignKey:(NSNotification*)notification;
- (void)windowDidMove:(NSNotification*)notification;
- (void)windowDidResize:(NSNotification*)notification;
- (void)windowDidEndLiveResize:(NSNotification*)notification;
- (nullable NSUndoManager*)windowWillReturnUndoManager:(NSWindow*)window;
@end
@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@property BOOL becomesKeyOnlyIfNeeded;
@property BOOL worksWhenModal;
@end
@interface NSAlert : NSObject
+ (NSAlert*)alertWithError:(NSError*)error;
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
@property(strong, nullable) NSImage* icon;
@property NSAlertStyle alertStyle;
@property(copy, readonly) NSArray<NSButton*>* buttons;
- (NSButton*)addButtonWithTitle:(NSString*)title;
@property BOOL showsHelp;
@property BOOL showsSuppressionButton;
@property(strong, readonly, nullable) NSButton* suppressionButton;
@property(strong, nullable) NSView* accessoryView;
- (void)layout;
- (NSModalResponse)runModal;
- (void)beginSheetModalForWindow:(NSWindow*)sheetWindow
               completionHandler:(void (^_Nullable)(NSModalResponse))handler;
@property(strong, readonly) NSWindow* window;
@end
@interface NSWorkspace : NSObject
@property(class, strong, readonly) NSWorkspace* sharedWorkspace;
@property(strong, readonly) NSNotificationCenter* notificationCenter;
@property(copy, readonly) NSArray<NSRunningApplication*>* runningApplications;
@property(strong, readonly, nullable) NSRunningApplication* frontmostApplication;
@property(strong, readonly, nullable) NSRunningApplication* menuBarOwningApplication;
- (BOOL)openURL:(NSURL*)url;
- (void)openURL:(NSURL*)url
        configuration:(NSWorkspaceOpenConfiguration*)configuration
    completionHandler:
        (void (^_Nullable)(NSRunningApplication* _Nullable, NSError* _Nullable))completionHandler;
- (void)openURLs:(NSArray<NSURL*>*)urls
    withApplicationAtURL:(NSURL*)applicationURL
           configuration:(NSWorkspaceOpenConfiguration*)configuration
       completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable,
                                            NSError* _Nullable))completionHandler;
- (nullable NSURL*)URLForApplicationWithBundleIdentifier:(NSString*)bundleIdentifier;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
- (void)openApplicationAtURL:(NSURL*)applicationURL
               configuration:(NSWorkspaceOpenConfiguration*)configuration
           completionHandler:(void (^_Nullable)(NSRunningApplication* _Nullable,
                                                NSError* _Nullable))completionHandler;
@end
@interface NSWorkspaceOpenConfiguration : NSObject <NSCopying>
+ (instancetype)configuration;
@property BOOL activates;
@property BOOL hides;
@property BOOL addsToRecentItems;
@end
@interface NSRunningApplication : NSObject
@property(class, strong, readonly) NSRunningApplication* currentApplication;
+ (NSArray<NSRunningApplication*>*)runningApplicationsWithBundleIdentifier:
    (NSString*)bundleIdentifier;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)pid;
@property(copy, readonly, nullable) NSString* bundleIdentifier;
@property(copy, readonly, nullable) NSURL* bundleURL;
@property(copy, readonly, nullable) NSURL* executableURL;
@property(copy, readonly, nullable) NSString* localizedName;
@property(readonly) pid_t processIdentifier;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(readonly, getter=isActive) BOOL active;
@property(readonly, getter=isHidden) BOOL hidden;
@property(readonly, getter=isTerminated) BOOL terminated;
@property(readonly, getter=isFinishedLaunching) BOOL finishedLaunching;
@property(readonly) BOOL ownsMenuBar;
@property(copy, readonly, nullable) NSDate* launchDate;
@property(strong, readonly, nullable) NSImage* icon;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
- (BOOL)activateFromApplication:(NSRunningApplication*)application
                        options:(NSApplicationActivationOptions)options API_AVAILABLE(macos(14.0));
- (BOOL)hide;
- (BOOL)unhide;
- (BOOL)terminate;
@end
@interface NSImage : NSObject <NSCopying>
+ (nullable NSImage*)imageNamed:(NSImageName)name;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description;
- (nullable instancetype)initWithContentsOfURL:(NSURL*)url;
- (nullable instancetype)initWithContentsOfFile:(NSString*)fileName;
- (instancetype)initWithSize:(NSSize)size;
@property NSSize size;
- (BOOL)isTemplate;
- (void)setTemplate:(BOOL)isTemplate;
@property(copy, nullable) NSString* accessibilityDescription;
@end
@interface NSScreen : NSObject
@property(class, strong, readonly, nullable) NSScreen* mainScreen;
@property(class, copy, readonly) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@property(readonly) NSRect visibleFrame;
@property(readonly) CGFloat backingScaleFactor;
@end
@interface NSEvent : NSObject <NSCopying>
@property(readonly) NSEventType type;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(readonly) unsigned short keyCode;
@property(copy, readonly, nullable) NSString* charactersIgnoringModifiers;
@property(class, readonly) NSPoint mouseLocation;
+ (id _Nullable)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:
                                                 (NSEvent* _Nullable (^)(NSEvent* _Nonnull))block;
+ (void)removeMonitor:(id)eventMonitor;
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)wNum
                                context:(nullable NSGraphicsContext*)unusedPassNil
                                subtype:(short)subtype
                                  data1:(NSInteger)d1
                                  data2:(NSInteger)d2;
@end
@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* windowBackgroundColor;
@property(class, strong, readonly) NSColor* clearColor;
@property(class, strong, readonly) NSColor* controlAccentColor;
@end
@interface NSAppearance : NSObject
@property(copy, readonly) NSAppearanceName name;
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:
    (NSArray<NSAppearanceName>*)appearances;
@end
@interface NSPasteboard : NSObject
@property(class, strong, readonly) NSPasteboard* generalPasteboard;
- (NSInteger)clearContents;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)dataType;
- (nullable NSString*)stringForType:(NSPasteboardType)dataType;
@end
@interface NSSavePanel : NSPanel
+ (nullable NSSavePanel*)savePanel;
@property(copy, readonly, nullable) NSURL* URL;
@property(copy) NSString* nameFieldStringValue;
@property(copy, nullable) NSURL* directoryURL;
@property(copy, null_resettable) NSString* message;
- (NSModalResponse)runModal;
- (void)beginWithCompletionHandler:(void (^)(NSModalResponse))handler;
@end
@interface NSOpenPanel : NSSavePanel
+ (nullable NSOpenPanel*)openPanel;
@property(copy, readonly) NSArray<NSURL*>* URLs;
@property BOOL canChooseFiles;
@property BOOL canChooseDirectories;
@property BOOL allowsMultipleSelection;
@end
@interface NSAttributedString : NSObject <NSCopying, NSMutableCopying>
- (instancetype)initWithString:(NSString*)str;
@property(copy, readonly) NSString* string;
@end
extern "C" {
extern NSApplication* _Null_unspecified NSApp;
extern NSNotificationName const NSWorkspaceDidActivateApplicationNotification;
extern NSNotificationName const NSWorkspaceDidDeactivateApplicationNotification;
extern NSNotificationName const NSWorkspaceDidLaunchApplicationNotification;
extern NSNotificationName const NSWorkspaceDidTerminateApplicationNotification;
extern NSNotificationName const NSWorkspaceDidWakeNotification;
extern NSString* const NSWorkspaceApplicationKey;
extern NSNotificationName const NSApplicationDidBecomeActiveNotification;
extern NSNotificationName const NSApplicationDidResignActiveNotification;
extern NSNotificationName const NSWindowWillCloseNotification;
extern NSNotificationName const NSWindowDidMoveNotification;
extern NSNotificationName const NSWindowDidResizeNotification;
extern NSRunLoopMode const NSModalPanelRunLoopMode;
extern NSRunLoopMode const NSEventTrackingRunLoopMode;
extern NSPasteboardType const NSPasteboardTypeString;
extern NSAppearanceName const NSAppearanceNameAqua;
extern NSAppearanceName const NSAppearanceNameDarkAqua;
}
NS_ASSUME_NONNULL_END
