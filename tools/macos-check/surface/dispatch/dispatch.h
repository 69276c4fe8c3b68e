#pragma once
#include "../base/objc_base.h"
NS_ASSUME_NONNULL_BEGIN
@protocol OS_dispatch_object <NSObject>
@end
typedef NSObject<OS_dispatch_object>* dispatch_object_t;
@protocol OS_dispatch_queue <OS_dispatch_object>
@end
@protocol OS_dispatch_source <OS_dispatch_object>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_queue>* dispatch_queue_attr_t;
typedef NSObject<OS_dispatch_source>* dispatch_source_t;
typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef long dispatch_once_t;
#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)
#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_QUEUE_SERIAL nullptr
struct dispatch_queue_s;
struct dispatch_source_type_s;
typedef const struct dispatch_source_type_s* dispatch_source_type_t;
#define DISPATCH_SOURCE_TYPE_SIGNAL (&_dispatch_source_type_signal)
extern "C" {
extern struct dispatch_queue_s _dispatch_main_q;
extern const struct dispatch_source_type_s _dispatch_source_type_signal;
static inline dispatch_queue_t dispatch_get_main_queue(void) {
  return (__bridge dispatch_queue_t)(void*)&_dispatch_main_q;
}
dispatch_queue_t dispatch_queue_create(const char* _Nullable label,
                                       dispatch_queue_attr_t _Nullable attr);
void dispatch_async(dispatch_queue_t queue, dispatch_block_t block);
void dispatch_sync(dispatch_queue_t queue, __attribute__((noescape)) dispatch_block_t block);
void dispatch_after(dispatch_time_t when, dispatch_queue_t queue, dispatch_block_t block);
dispatch_time_t dispatch_time(dispatch_time_t when, int64_t delta);
void dispatch_once(dispatch_once_t* predicate, __attribute__((noescape)) dispatch_block_t block);
dispatch_source_t dispatch_source_create(dispatch_source_type_t type, uintptr_t handle,
                                         uintptr_t mask, dispatch_queue_t _Nullable queue);
void dispatch_source_set_event_handler(dispatch_source_t source, dispatch_block_t _Nullable handler);
void dispatch_source_set_registration_handler(dispatch_source_t source,
                                              dispatch_block_t _Nullable handler);
void dispatch_source_cancel(dispatch_source_t source);
void dispatch_activate(dispatch_object_t object);
}
NS_ASSUME_NONNULL_END
