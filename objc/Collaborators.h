// The SDK's own classes in Objective-C, as the component's collaborators.
//
// Values   a class is known by its name: TavloPackage, TavloUniqueUserHandler, DataBaseHandler (and what it answers,
//          NetworkTrackerDetail), Logger, TavloException. Each operation of the contract is one message, in the
//          contract's order; TavloPackage is asked for its sharedInstance once a call.
// Absent   a class that is not there leaves its slot empty; an operation that a class lacks answers nil, NO or 0.
// Threads  any thread, any time; as the classes themselves.
// Throws   what the classes raise.
#pragma once

namespace tavlo::objc {

// Fills each slot that is empty and whose class is there.
void adoptCollaborators();

}  // namespace tavlo::objc
