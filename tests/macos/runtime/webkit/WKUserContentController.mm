// What the page and the program know of each other. The controller keeps its handlers, and a name
// may be taken once: "adding a script message handler with a name that is in use raises".
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#import "tests/macos/runtime/webkit/Content.h"

using namespace quorin;

@implementation WKUserScript {
  NSString* _source;
  BOOL _mainFrameOnly;
}

- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)time
              forMainFrameOnly:(BOOL)mainFrameOnly {
  if (time != WKUserScriptInjectionTimeAtDocumentStart)
    raise("NSInvalidArgumentException", "this fake knows the document's start");
  _source = source;
  _mainFrameOnly = mainFrameOnly;
  return self;
}
- (NSString*)text {
  return _mainFrameOnly ? _source : [@"/* in every frame */ " stringByAppendingString:_source];
}
- (id)copyWithZone:(NSZone*)zone {
  return self;
}

@end

@implementation WKUserContentController {
  std::map<std::string, id<WKScriptMessageHandler>> _handlers;
  std::vector<std::string> _scripts;
}

- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)handler name:(NSString*)name {
  onMainThread("addScriptMessageHandler:name:");
  if (!_handlers.try_emplace(read(name), handler).second)
    raise("NSInvalidArgumentException", "a message handler of this name is there already");
}
- (void)removeScriptMessageHandlerForName:(NSString*)name {
  onMainThread("removeScriptMessageHandlerForName:");
  _handlers.erase(read(name));
}
- (void)addUserScript:(WKUserScript*)script {
  _scripts.push_back(read(script.text));
}
- (const std::map<std::string, id<WKScriptMessageHandler>>&)handlers {
  return _handlers;
}
- (const std::vector<std::string>&)scripts {
  return _scripts;
}

@end

// "The web view copies the configuration"; the copy has the same controller.
@implementation WKWebViewConfiguration
@synthesize userContentController = _userContentController;

- (instancetype)init {
  _userContentController = [[WKUserContentController alloc] init];
  return self;
}
- (id)copyWithZone:(NSZone*)zone {
  WKWebViewConfiguration* copy = [[WKWebViewConfiguration alloc] init];
  copy->_userContentController = _userContentController;
  return copy;
}

@end
