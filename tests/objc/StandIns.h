// Stand-ins for the classes of UIKit and CoreLocation, with just the selectors that are used. They answer what they are
// given and note what they are asked:
//
//   UIImage imageWithContentsOfFile:<path>
//   UIApplication sharedApplication                     canOpenURL:<url>
//   interactionControllerWithURL:<url>                  presentOpenInMenuFromRect:0,0,0,0 inView:<view> animated:1
//   locationServicesEnabled                             authorizationStatus
//   CLLocationManager init                              setDistanceFilter:-1
//   setDesiredAccuracy:-1                               startUpdatingLocation
//   location                                            CLGeocoder init
//   reverseGeocodeLocation:28.5,77.25 completionHandler
//   placemark.country                                   and so on for each field
//   CLLocationManager dealloc, UIImage dealloc, UIDocumentInteractionController dealloc, CLGeocoder dealloc
#pragma once

#import "platform/apple/DeviceFrameworks.h"

struct Device {
  BOOL opens;
  BOOL isEnabled;
  int status;
  BOOL hasFix;
  CLLocationCoordinate2D fix;
  CLLocation* given;  // what the manager gave last, retained
  BOOL isGiven;       // whether that very object came to the geocoder
  BOOL geocoderRaises;
  BOOL answersAtOnce;                // without placemarks
  CLGeocodeCompletionHandler asked;  // the latest request of the geocoder, retained
};

Device& device();
void forgetDevice();

// A placemark of these fields, by their names.
CLPlacemark* placemark(NSDictionary* fields);

// The geocoder's answer to its latest request.
void answerGeocoder(NSArray* placemarks, NSError* error);

// A screen with this view.
UIViewController* screen(UIView* view);
