#pragma once
#include "../AppKit/AppKit.h"
NS_ASSUME_NONNULL_BEGIN
@class WKWebView, WKWebViewConfiguration, WKUserContentController, WKScriptMessage, WKUserScript,
    WKContentWorld, WKPreferences, WKWebpagePreferences, WKWebsiteDataStore, WKNavigation,
    WKNavigationAction, WKNavigationResponse, WKFrameInfo, WKSecurityOrigin, WKWindowFeatures,
    WKOpenPanelParameters;
@protocol WKNavigationDelegate, WKUIDelegate, WKURLSchemeHandler, WKURLSchemeTask, WKScriptMessageHandler,
    WKScriptMessageHandlerWithReply;
typedef NS_ENUM(NSInteger, WKNavigationActionPolicy) {
  WKNavigationActionPolicyCancel = 0,
  WKNavigationActionPolicyAllow = 1,
  WKNavigationActionPolicyDownload = 2
};
typedef NS_ENUM(NSInteger, WKNavigationResponsePolicy) {
  WKNavigationResponsePolicyCancel = 0,
  WKNavigationResponsePolicyAllow = 1,
  WKNavigationResponsePolicyDownload = 2
};
typedef NS_ENUM(NSInteger, WKNavigationType) {
  WKNavigationTypeLinkActivated = 0,
  WKNavigationTypeFormSubmitted = 1,
  WKNavigationTypeBackForward = 2,
  WKNavigationTypeReload = 3,
  WKNavigationTypeFormResubmitted = 4,
  WKNavigationTypeOther = -1
};
typedef NS_ENUM(NSInteger, WKUserScriptInjectionTime) {
  WKUserScriptInjectionTimeAtDocumentStart = 0,
  WKUserScriptInjectionTimeAtDocumentEnd = 1
};
typedef NS_ENUM(NSInteger, WKPermissionDecision) {
  WKPermissionDecisionPrompt = 0,
  WKPermissionDecisionGrant = 1,
  WKPermissionDecisionDeny = 2
};
typedef NS_ENUM(NSInteger, WKMediaCaptureType) {
  WKMediaCaptureTypeCamera = 0,
  WKMediaCaptureTypeMicrophone = 1,
  WKMediaCaptureTypeCameraAndMicrophone = 2
};
typedef NS_ENUM(NSInteger, WKErrorCode) {
  WKErrorUnknown = 1,
  WKErrorWebContentProcessTerminated = 2,
  WKErrorWebViewInvalidated = 3,
  WKErrorJavaScriptExceptionOccurred = 4,
  WKErrorJavaScriptResultTypeIsUnsupported = 5
};
@interface WKWebView : NSView
- (instancetype)initWithFrame:(CGRect)frame configuration:(WKWebViewConfiguration*)configuration;
@property(copy, readonly) WKWebViewConfiguration* configuration;
@property(weak, nullable) id<WKNavigationDelegate> navigationDelegate;
@property(weak, nullable) id<WKUIDelegate> UIDelegate;
- (nullable WKNavigation*)loadRequest:(NSURLRequest*)request;
- (nullable WKNavigation*)loadFileURL:(NSURL*)URL allowingReadAccessToURL:(NSURL*)readAccessURL;
- (nullable WKNavigation*)loadHTMLString:(NSString*)string baseURL:(nullable NSURL*)baseURL;
@property(copy, readonly, nullable) NSString* title;
@property(copy, readonly, nullable) NSURL* URL;
@property(readonly, getter=isLoading) BOOL loading;
@property(readonly) double estimatedProgress;
- (nullable WKNavigation*)reload;
- (void)stopLoading;
- (void)evaluateJavaScript:(NSString*)javaScriptString
         completionHandler:
             (void (^_Nullable)(id _Nullable_result, NSError* _Nullable))completionHandler;
- (void)callAsyncJavaScript:(NSString*)functionBody
                  arguments:(NSDictionary<NSString*, id>* _Nullable)arguments
                    inFrame:(WKFrameInfo* _Nullable)frame
             inContentWorld:(WKContentWorld*)contentWorld
          completionHandler:
              (void (^_Nullable)(id _Nullable_result, NSError* _Nullable))completionHandler;
@property BOOL allowsBackForwardNavigationGestures;
@property BOOL allowsMagnification;
@property BOOL allowsLinkPreview;
@property(copy, nullable) NSString* customUserAgent;
@property(getter=isInspectable) BOOL inspectable API_AVAILABLE(macos(13.3));
@property(copy, null_resettable) NSColor* underPageBackgroundColor;
@property CGFloat pageZoom;
@end
@interface WKWebViewConfiguration : NSObject <NSCopying>
@property(strong) WKUserContentController* userContentController;
@property(strong) WKPreferences* preferences;
@property(copy, null_resettable) WKWebpagePreferences* defaultWebpagePreferences;
@property(strong) WKWebsiteDataStore* websiteDataStore;
@property BOOL suppressesIncrementalRendering;
@property(copy, nullable) NSString* applicationNameForUserAgent;
- (void)setURLSchemeHandler:(nullable id<WKURLSchemeHandler>)urlSchemeHandler
               forURLScheme:(NSString*)urlScheme;
- (nullable id<WKURLSchemeHandler>)urlSchemeHandlerForURLScheme:(NSString*)urlScheme;
@end
@interface WKUserContentController : NSObject
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)scriptMessageHandler
                           name:(NSString*)name;
- (void)addScriptMessageHandler:(id<WKScriptMessageHandler>)scriptMessageHandler
                   contentWorld:(WKContentWorld*)world
                           name:(NSString*)name;
- (void)addScriptMessageHandlerWithReply:
            (id<WKScriptMessageHandlerWithReply>)scriptMessageHandlerWithReply
                            contentWorld:(WKContentWorld*)contentWorld
                                    name:(NSString*)name;
- (void)removeScriptMessageHandlerForName:(NSString*)name;
- (void)removeAllScriptMessageHandlers;
- (void)addUserScript:(WKUserScript*)userScript;
- (void)removeAllUserScripts;
@end
@protocol WKScriptMessageHandler <NSObject>
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message;
@end
@protocol WKScriptMessageHandlerWithReply <NSObject>
- (void)userContentController:(WKUserContentController*)userContentController
      didReceiveScriptMessage:(WKScriptMessage*)message
                 replyHandler:(void (^)(id _Nullable, NSString* _Nullable))replyHandler;
@end
@interface WKScriptMessage : NSObject
@property(copy, readonly) id body;
@property(copy, readonly) NSString* name;
@property(weak, readonly, nullable) WKWebView* webView;
@property(copy, readonly) WKFrameInfo* frameInfo;
@property(readonly) WKContentWorld* world;
@end
@interface WKUserScript : NSObject <NSCopying>
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)injectionTime
              forMainFrameOnly:(BOOL)forMainFrameOnly;
- (instancetype)initWithSource:(NSString*)source
                 injectionTime:(WKUserScriptInjectionTime)injectionTime
              forMainFrameOnly:(BOOL)forMainFrameOnly
                inContentWorld:(WKContentWorld*)contentWorld;
@end
@interface WKContentWorld : NSObject
@property(class, readonly) WKContentWorld* pageWorld;
@property(class, readonly) WKContentWorld* defaultClientWorld;
@end
@interface WKPreferences : NSObject
@property BOOL javaScriptCanOpenWindowsAutomatically;
@property CGFloat minimumFontSize;
@property(getter=isTextInteractionEnabled) BOOL textInteractionEnabled;
@property(getter=isElementFullscreenEnabled) BOOL elementFullscreenEnabled;
@end
@interface WKWebpagePreferences : NSObject
@property BOOL allowsContentJavaScript;
@end
@interface WKWebsiteDataStore : NSObject
+ (WKWebsiteDataStore*)defaultDataStore;
+ (WKWebsiteDataStore*)nonPersistentDataStore;
@property(readonly, getter=isPersistent) BOOL persistent;
@end
@interface WKNavigation : NSObject
@end
@interface WKNavigationAction : NSObject
@property(copy, readonly, nullable) WKFrameInfo* sourceFrame;
@property(copy, readonly, nullable) WKFrameInfo* targetFrame;
@property(readonly) WKNavigationType navigationType;
@property(copy, readonly) NSURLRequest* request;
@end
@interface WKNavigationResponse : NSObject
@property(copy, readonly) NSURLResponse* response;
@property(readonly) BOOL canShowMIMEType;
@end
@interface WKFrameInfo : NSObject <NSCopying>
@property(readonly, getter=isMainFrame) BOOL mainFrame;
@property(copy, readonly) NSURLRequest* request;
@property(readonly) WKSecurityOrigin* securityOrigin;
@end
@interface WKSecurityOrigin : NSObject
@property(copy, readonly) NSString* protocol;
@property(copy, readonly) NSString* host;
@property(readonly) NSInteger port;
@end
@protocol WKNavigationDelegate <NSObject>
@optional
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationAction:(WKNavigationAction*)navigationAction
                    decisionHandler:(void (^)(WKNavigationActionPolicy))decisionHandler;
- (void)webView:(WKWebView*)webView
    decidePolicyForNavigationResponse:(WKNavigationResponse*)navigationResponse
                      decisionHandler:(void (^)(WKNavigationResponsePolicy))decisionHandler;
- (void)webView:(WKWebView*)webView
    didStartProvisionalNavigation:(nullable WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailProvisionalNavigation:(nullable WKNavigation*)navigation
                       withError:(NSError*)error;
- (void)webView:(WKWebView*)webView didCommitNavigation:(nullable WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView didFinishNavigation:(nullable WKNavigation*)navigation;
- (void)webView:(WKWebView*)webView
    didFailNavigation:(nullable WKNavigation*)navigation
            withError:(NSError*)error;
- (void)webViewWebContentProcessDidTerminate:(WKWebView*)webView;
@end
@interface WKWindowFeatures : NSObject
@end
@protocol WKUIDelegate <NSObject>
@optional
- (nullable WKWebView*)webView:(WKWebView*)webView
    createWebViewWithConfiguration:(WKWebViewConfiguration*)configuration
               forNavigationAction:(WKNavigationAction*)navigationAction
                    windowFeatures:(WKWindowFeatures*)windowFeatures;
- (void)webView:(WKWebView*)webView
    runJavaScriptAlertPanelWithMessage:(NSString*)message
                      initiatedByFrame:(WKFrameInfo*)frame
                     completionHandler:(void (^)(void))completionHandler;
- (void)webView:(WKWebView*)webView
    runJavaScriptConfirmPanelWithMessage:(NSString*)message
                        initiatedByFrame:(WKFrameInfo*)frame
                       completionHandler:(void (^)(BOOL))completionHandler;
- (void)webView:(WKWebView*)webView
    requestMediaCapturePermissionForOrigin:(WKSecurityOrigin*)origin
                          initiatedByFrame:(WKFrameInfo*)frame
                                      type:(WKMediaCaptureType)type
                           decisionHandler:(void (^)(WKPermissionDecision))decisionHandler;
- (void)webView:(WKWebView*)webView
    runOpenPanelWithParameters:(WKOpenPanelParameters*)parameters
              initiatedByFrame:(WKFrameInfo*)frame
             completionHandler:(void (^)(NSArray<NSURL*>* _Nullable))completionHandler;
@end
@protocol WKURLSchemeHandler <NSObject>
- (void)webView:(WKWebView*)webView startURLSchemeTask:(id<WKURLSchemeTask>)urlSchemeTask;
- (void)webView:(WKWebView*)webView stopURLSchemeTask:(id<WKURLSchemeTask>)urlSchemeTask;
@end
@protocol WKURLSchemeTask <NSObject>
@property(copy, readonly) NSURLRequest* request;
- (void)didReceiveResponse:(NSURLResponse*)response;
- (void)didReceiveData:(NSData*)data;
- (void)didFinish;
- (void)didFailWithError:(NSError*)error;
@end
extern "C" {
extern NSString* const WKErrorDomain;
}
NS_ASSUME_NONNULL_END
