// The SDK's own classes, as an app has them: TavloPackage, TavloUniqueUserHandler, DataBaseHandler with its
// NetworkTrackerDetail, Logger and TavloException. They answer what they were given and note what they are asked:
//
//   TavloPackage sharedInstance            DataBaseHandler sharedInastance
//   os_version                             getNetworkTrackerDetails
//   setLatitude:28.5 AndLogitude:77.2      networkID
//   getIsUserNew                           tavloException:<message>
//   printLog:<line>
#pragma once

#import <Foundation/Foundation.h>

// What the classes answer. Emptied by forgetSdk().
struct Sdk {
  NSMutableDictionary* texts;    // of the package, by operation; nil: there is no package
  NSMutableDictionary* numbers;  // of the package and of the unique-user handler, by operation
  NSString* day;
  NSArray* records;  // of NetworkTrackerDetail
  BOOL isLimited;
  BOOL reporterRaises;
};

Sdk& sdk();
void forgetSdk();

// A NetworkTrackerDetail.
id trackerRecord(id networkID, id event, id count);
