#pragma once
#include "../ApplicationServices/ApplicationServices.h"
extern "C" {
typedef struct OpaqueEventRef* EventRef;
typedef struct OpaqueEventHandlerRef* EventHandlerRef;
typedef struct OpaqueEventHandlerCallRef* EventHandlerCallRef;
typedef struct OpaqueEventTargetRef* EventTargetRef;
typedef struct OpaqueEventHotKeyRef* EventHotKeyRef;
typedef OSType EventParamName;
typedef OSType EventParamType;
typedef double EventTime;
typedef UInt32 EventAttributes;
#pragma pack(push, 2)
struct EventTypeSpec {
  OSType eventClass;
  UInt32 eventKind;
};
struct EventHotKeyID {
  OSType signature;
  UInt32 id;
};
#pragma pack(pop)
typedef OSStatus (*EventHandlerProcPtr)(EventHandlerCallRef inHandlerCallRef, EventRef inEvent,
                                        void* inUserData);
typedef EventHandlerProcPtr EventHandlerUPP;
enum {
  kEventClassKeyboard = 'keyb',
  kEventHotKeyPressed = 5,
  kEventHotKeyReleased = 6,
  kEventParamDirectObject = '----',
  typeEventHotKeyID = 'hkid',
  kEventHotKeyNoOptions = 0,
  kEventHotKeyExclusive = 1,
  kEventAttributeNone = 0
};  // event classes/kinds
enum {
  cmdKey = 256,
  shiftKey = 512,
  alphaLock = 1024,
  optionKey = 2048,
  controlKey = 4096
};  // modifiers
enum {
  eventNotHandledErr = -9874,
  eventHotKeyExistsErr = -9878,
  eventHotKeyInvalidErr = -9879
};  // errors
enum {
  kVK_ANSI_A = 0,
  kVK_ANSI_E = 14,
  kVK_ANSI_T = 17,
  kVK_ANSI_X = 7,
  kVK_Return = 36,
  kVK_Tab = 48,
  kVK_Space = 49,
  kVK_Escape = 53,
  kVK_F1 = 122,
  kVK_F5 = 96,
  kVK_LeftArrow = 123,
  kVK_RightArrow = 124,
  kVK_DownArrow = 125,
  kVK_UpArrow = 126
};  // virtual keys
OSStatus RegisterEventHotKey(UInt32 inHotKeyCode, UInt32 inHotKeyModifiers,
                             EventHotKeyID inHotKeyId, EventTargetRef inTarget,
                             OptionBits inOptions, EventHotKeyRef* outRef);
OSStatus UnregisterEventHotKey(EventHotKeyRef inHotKey);
OSStatus InstallEventHandler(EventTargetRef inTarget, EventHandlerUPP inHandler,
                             ItemCount inNumTypes, const EventTypeSpec* inList, void* inUserData,
                             EventHandlerRef* outRef);
OSStatus RemoveEventHandler(EventHandlerRef inHandlerRef);
OSStatus GetEventParameter(EventRef inEvent, EventParamName inName, EventParamType inDesiredType,
                           EventParamType* outActualType, ByteCount inBufferSize,
                           ByteCount* outActualSize, void* outData);
OSStatus CreateEvent(CFAllocatorRef inAllocator, OSType inClassID, UInt32 inKind, EventTime inWhen,
                     EventAttributes inAttributes, EventRef* outEvent);
OSStatus SetEventParameter(EventRef inEvent, EventParamName inName, EventParamType inType,
                           ByteCount inSize, const void* inDataPtr);
OSStatus SendEventToEventTarget(EventRef inEvent, EventTargetRef inTarget);
void ReleaseEvent(EventRef inEvent);
OSType GetEventClass(EventRef inEvent);
UInt32 GetEventKind(EventRef inEvent);
EventTargetRef GetApplicationEventTarget(void);
EventTargetRef GetEventDispatcherTarget(void);
OSStatus CallNextEventHandler(EventHandlerCallRef inCallRef, EventRef inEvent);
}
