#pragma once
#include "objc_base.h"
typedef unsigned int UInt32;
typedef int SInt32;
typedef unsigned short UInt16;
typedef short SInt16;
typedef unsigned char UInt8;
typedef signed char SInt8;
typedef unsigned long long UInt64;
typedef long long SInt64;
typedef unsigned char Boolean;
typedef UInt16 UniChar;
typedef double Float64;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef FourCharCode ResType;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef UInt32 OptionBits;
typedef unsigned long ItemCount;
typedef unsigned long ByteCount;
typedef long Size;
typedef char* Ptr;
struct ProcessSerialNumber {
  UInt32 highLongOfPSN, lowLongOfPSN;
};
enum {
  noErr = 0
};
