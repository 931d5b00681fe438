#pragma once

// What the worker uses of a Mac's Foundation, declared as there.

#include <CoreFoundation/CoreFoundation.h>

#define DEPRECATED_11 __attribute__((availability(macos, introduced = 10.8, deprecated = 11.0)))

#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

// Clang looks for a typedef.
typedef signed char BOOL;
using NSInteger = long;
using NSUInteger = unsigned long;
using NSTimeInterval = double;
using NSStringEncoding = NSUInteger;
using unichar = unsigned short;
enum : NSStringEncoding { NSUTF8StringEncoding = 4, NSISOLatin1StringEncoding = 5 };
enum : NSInteger { NSNotFound = 0x7fffffffffffffff };
struct NSRange {
  NSUInteger location, length;
};
NSRange NSMakeRange(NSUInteger location, NSUInteger length);
struct NSFastEnumerationState {
  unsigned long state;
  id __unsafe_unretained* itemsPtr;
  unsigned long* mutationsPtr;
  unsigned long extra[5];
};

@class NSString;
@protocol NSObject
- (id)retain;
- (oneway void)release;
- (id)autorelease;
- (BOOL)isKindOfClass:(Class)kind;
- (NSString*)description;
@end
__attribute__((objc_root_class))
@interface NSObject<NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
- (void)dealloc;
+ (BOOL)instancesRespondToSelector:(SEL)selector;
@end
@protocol NSCopying
@end
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count;
@end
@interface NSString : NSObject <NSCopying>
- (NSUInteger)length;
- (void)getCharacters:(unichar*)buffer range:(NSRange)range;
- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding;
@end
@interface NSArray<ObjectType> : NSObject <NSFastEnumeration>
- (NSUInteger)count;
- (ObjectType)objectAtIndex:(NSUInteger)index;
@end
@interface NSMutableArray<ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)object;
@end
@interface NSDictionary<KeyType, ObjectType> : NSObject <NSFastEnumeration>
+ (instancetype)dictionaryWithObjects:(const ObjectType[])objects
                              forKeys:(const KeyType<NSCopying>[])keys
                                count:(NSUInteger)count;
- (ObjectType)objectForKey:(KeyType)key;
@end
@interface NSMutableDictionary<KeyType, ObjectType> : NSDictionary <KeyType, ObjectType>
+ (instancetype)dictionaryWithCapacity:(NSUInteger)capacity;
- (void)setObject:(ObjectType)object forKey:(KeyType<NSCopying>)key;
@end
@interface NSNumber : NSObject
+ (NSNumber*)numberWithBool:(BOOL)value;
@end
@interface NSData : NSObject
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes;
@end
@interface NSDate : NSObject
+ (instancetype)dateWithTimeIntervalSinceNow:(NSTimeInterval)seconds;
+ (instancetype)dateWithTimeIntervalSince1970:(NSTimeInterval)seconds;
@property(readonly) NSTimeInterval timeIntervalSinceNow;
@end
extern NSString* const NSDefaultRunLoopMode;
@interface NSRunLoop : NSObject
@property(class, readonly) NSRunLoop* currentRunLoop;
- (BOOL)runMode:(NSString*)mode beforeDate:(NSDate*)limit;
@end
@interface NSUserDefaults : NSObject
@property(class, readonly) NSUserDefaults* standardUserDefaults;
- (void)addSuiteNamed:(NSString*)suite;
- (BOOL)boolForKey:(NSString*)key;
- (void)registerDefaults:(NSDictionary<NSString*, id>*)defaults;
@end
@interface NSProcessInfo : NSObject
@property(class, readonly) NSProcessInfo* processInfo;
@property(readonly) NSArray<NSString*>* arguments;
@end
@interface NSBundle : NSObject
@property(class, readonly) NSBundle* mainBundle;
- (NSString*)localizedStringForKey:(NSString*)key value:(NSString*)value table:(NSString*)table;
@end
@interface NSHTTPCookie : NSObject
@property(readonly) NSString *name, *domain;
@end
@interface NSHTTPCookieStorage : NSObject
@property(class, readonly) NSHTTPCookieStorage* sharedHTTPCookieStorage;
@property(readonly) NSArray<NSHTTPCookie*>* cookies;
- (void)deleteCookie:(NSHTTPCookie*)cookie;
@end
@interface NSNotification : NSObject
@end
NSString* NSHomeDirectory();

DEPRECATED_11 @interface NSUserNotification : NSObject
@property NSString *title, *subtitle, *informativeText, *soundName;
@property NSDate* deliveryDate;
@property BOOL hasActionButton;
@end
@class NSUserNotificationCenter;
DEPRECATED_11 @protocol NSUserNotificationCenterDelegate<NSObject>
@end
DEPRECATED_11 @interface NSUserNotificationCenter : NSObject
@property(class, readonly) NSUserNotificationCenter* defaultUserNotificationCenter;
@property(assign) id<NSUserNotificationCenterDelegate> delegate;
- (void)scheduleNotification:(NSUserNotification*)notification;
- (void)removeDeliveredNotification:(NSUserNotification*)notification;
@end
