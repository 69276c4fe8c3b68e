// What the fake web view asks of its configuration and gives to its handlers.
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

namespace quorin {

double secondsOf(NSURLRequest* request);  // how long it may take

// What a page has posted, from JSON text: WebKit gives NSDictionary, NSArray, NSString, NSNumber
// and NSNull (WKScriptMessage, body). A date, which JSON does not know, is a text here.
id bodyOfJSON(const std::string& text);

}  // namespace quorin
