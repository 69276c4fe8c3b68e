// What the fake web view asks of its configuration.
#pragma once

#import <WebKit/WebKit.h>
#include <map>
#include <string>
#include <vector>

@interface WKUserScript (QXContent)
- (NSString*)text;
@end

@interface WKUserContentController (QXContent)
- (const std::map<std::string, id<WKScriptMessageHandler>>&)handlers;
- (const std::vector<std::string>&)scripts;
@end
