#pragma once
#include "../CoreFoundation/CoreFoundation.h"
extern "C" {
typedef ResType DescType;
typedef FourCharCode AEKeyword;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
typedef SInt16 AEReturnID;
typedef SInt32 AETransactionID;
typedef SInt32 AESendMode;
typedef SInt16 AESendPriority;
typedef struct OpaqueAEDataStorageType* AEDataStorageType_;
typedef AEDataStorageType_* AEDataStorage;
#pragma pack(push, 2)
struct AEDesc {
  DescType descriptorType;
  AEDataStorage _Nullable dataHandle;
};  // 12 bytes on LP64
#pragma pack(pop)
typedef struct AEDesc AEDesc;
typedef AEDesc AEDescList;
typedef AEDescList AERecord;
typedef AEDesc AEAddressDesc;
typedef AERecord AppleEvent;
enum {
  typeNull = 'null',
  typeBoolean = 'bool',
  typeTrue = 'true',
  typeFalse = 'fals',
  typeSInt16 = 'shor',
  typeUInt16 = 'ushr',
  typeSInt32 = 'long',
  typeUInt32 = 'magn',
  typeSInt64 = 'comp',
  typeUInt64 = 'ucom',
  typeIEEE32BitFloatingPoint = 'sing',
  typeIEEE64BitFloatingPoint = 'doub',
  typeChar = 'TEXT',
  typeUnicodeText = 'utxt',
  typeUTF8Text = 'utf8',
  typeUTF16ExternalRepresentation = 'ut16',
  typeType = 'type',
  typeEnumerated = 'enum',
  typeAEList = 'list',
  typeAERecord = 'reco',
  typeAppleEvent = 'aevt',
  typeObjectSpecifier = 'obj ',
  typeFileURL = 'furl',
  typeProcessSerialNumber = 'psn ',
  typeKernelProcessID = 'kpid',
  typeApplicationBundleID = 'bund',
  typeLongDateTime = 'ldt ',
  typeWildCard = '****'
};  // descriptor types
enum {
  keyDirectObject = '----',
  keyErrorNumber = 'errn',
  keyErrorString = 'errs',
  keyAddressAttr = 'addr',
  keyEventClassAttr = 'evcl',
  keyEventIDAttr = 'evid',
  kCoreEventClass = 'aevt',
  kAEAnswer = 'ansr',
  kAEOpenApplication = 'oapp',
  kAEQuitApplication = 'quit',
  kAEReopenApplication = 'rapp',
  kAECoreSuite = 'core',
  kAEGetData = 'getd',
  kAESetData = 'setd',
  kInternetEventClass = 'GURL',
  kAEGetURL = 'GURL'
};  // keywords & ids
enum {
  kAENoReply = 1,
  kAEQueueReply = 2,
  kAEWaitReply = 3,
  kAENeverInteract = 16,
  kAECanInteract = 32,
  kAEAlwaysInteract = 48,
  kAECanSwitchLayer = 64,
  kAutoGenerateReturnID = -1,
  kAnyTransactionID = 0,
  kAEDefaultTimeout = -1,
  kNoTimeOut = -2,
  kCurrentProcess = 2
};  // send modes & ids
enum {
  userCanceledErr = -128,
  procNotFound = -600,
  connectionInvalid = -609,
  errAECoercionFail = -1700,
  errAEDescNotFound = -1701,
  errAEWrongDataType = -1703,
  errAEEventNotHandled = -1708,
  errAETimeout = -1712,
  errAENoSuchObject = -1728,
  errAEEventNotPermitted = -1743,
  errAEEventWouldRequireUserConsent = -1744,
  errAETargetAddressNotPermitted = -1742,
  errOSASystemError = -1750,
  errOSAScriptError = -1753,
  errOSAGeneralError = -2700,
  errOSACantLaunch = -2703,
  errOSATypeError = -1703
};  // errors
enum {
  kASAppleScriptSuite = 'ascr',
  kASSubroutineEvent = 'psbr',
  kASPrepositionalSubroutine = 'psbr',
  keyASSubroutineName = 'snam',
  keyASPositionalArgs = 'parg',
  keyASUserRecordFields = 'usrf',
  cMissingValue = 'msng',
  keySubjectAttr = 'subj',
  typeAppleScript = 'ascr'
};  // OpenScripting/ASRegistry + OSA
void AEInitializeDesc(AEDesc* desc);
OSErr AECreateDesc(DescType typeCode, const void* dataPtr, Size dataSize, AEDesc* result);
OSErr AEDisposeDesc(AEDesc* theAeDesc);
OSErr AEDuplicateDesc(const AEDesc* theAeDesc, AEDesc* result);
OSErr AECreateList(const void* factoringPtr, Size factoredSize, Boolean isRecord,
                   AEDescList* resultList);
OSErr AECountItems(const AEDescList* theAeDescList, long* theCount);
OSErr AEPutPtr(AEDescList* theAeDescList, long index, DescType typeCode, const void* dataPtr,
               Size dataSize);
OSErr AEPutDesc(AEDescList* theAeDescList, long index, const AEDesc* theAeDesc);
OSErr AEGetNthPtr(const AEDescList* theAeDescList, long index, DescType desiredType,
                  AEKeyword* theAeKeyword, DescType* typeCode, void* dataPtr, Size maximumSize,
                  Size* actualSize);
OSErr AEGetNthDesc(const AEDescList* theAeDescList, long index, DescType desiredType,
                   AEKeyword* theAeKeyword, AEDesc* result);
OSErr AESizeOfNthItem(const AEDescList* theAeDescList, long index, DescType* typeCode,
                      Size* dataSize);
Boolean AECheckIsRecord(const AEDesc* theDesc);
OSErr AECreateAppleEvent(AEEventClass theAeEventClass, AEEventID theAeEventId,
                         const AEAddressDesc* target, AEReturnID returnId,
                         AETransactionID transactionId, AppleEvent* result);
OSErr AEPutParamPtr(AppleEvent* theAppleEvent, AEKeyword theAeKeyword, DescType typeCode,
                    const void* dataPtr, Size dataSize);
OSErr AEPutParamDesc(AppleEvent* theAppleEvent, AEKeyword theAeKeyword, const AEDesc* theAeDesc);
OSErr AEGetParamPtr(const AppleEvent* theAppleEvent, AEKeyword theAeKeyword, DescType desiredType,
                    DescType* actualType, void* dataPtr, Size maximumSize, Size* actualSize);
OSErr AEGetParamDesc(const AppleEvent* theAppleEvent, AEKeyword theAeKeyword, DescType desiredType,
                     AEDesc* result);
OSErr AESizeOfParam(const AppleEvent* theAppleEvent, AEKeyword theAeKeyword, DescType* typeCode,
                    Size* dataSize);
OSErr AEPutAttributePtr(AppleEvent* theAppleEvent, AEKeyword theAeKeyword, DescType typeCode,
                        const void* dataPtr, Size dataSize);
OSErr AEPutAttributeDesc(AppleEvent* theAppleEvent, AEKeyword theAeKeyword,
                         const AEDesc* theAeDesc);
OSErr AEGetAttributeDesc(const AppleEvent* theAppleEvent, AEKeyword theAeKeyword,
                         DescType desiredType, AEDesc* result);
OSErr AEGetDescData(const AEDesc* theAeDesc, void* dataPtr, Size maximumSize);
Size AEGetDescDataSize(const AEDesc* theAeDesc);
OSErr AECoerceDesc(const AEDesc* theAeDesc, DescType toType, AEDesc* result);
Size AESizeOfFlattenedDesc(const AEDesc* theAeDesc);
OSStatus AEFlattenDesc(const AEDesc* theAeDesc, Ptr buffer, Size bufferSize, Size* actualSize);
OSStatus AEUnflattenDesc(const void* buffer, AEDesc* result);
OSStatus AESendMessage(const AppleEvent* event, AppleEvent* reply, AESendMode sendMode,
                       long timeOutInTicks);
OSStatus AEDeterminePermissionToAutomateTarget(const AEAddressDesc* target,
                                               AEEventClass theAeEventClass, AEEventID theAeEventId,
                                               Boolean askUserIfNeeded);
}
