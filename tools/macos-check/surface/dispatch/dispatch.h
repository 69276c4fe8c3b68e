#pragma once
#include "../base/objc_base.h"
NS_ASSUME_NONNULL_BEGIN
@protocol OS_dispatch_queue <NSObject>
@end
typedef NSObject<OS_dispatch_queue>* dispatch_queue_t;
typedef NSObject<OS_dispatch_queue>* dispatch_queue_attr_t;
typedef void (^dispatch_block_t)(void);
typedef uint64_t dispatch_time_t;
typedef long dispatch_once_t;
#define DISPATCH_TIME_NOW (0ull)
#define DISPATCH_TIME_FOREVER (~0ull)
#define NSEC_PER_SEC 1000000000ull
#define DISPATCH_QUEUE_SERIAL nullptr
struct dispatch_queue_s;
extern "C" {
extern struct dispatch_queue_s _dispatch_main_q;
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
}
NS_ASSUME_NONNULL_END
