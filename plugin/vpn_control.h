#pragma once

#include "plugin_instance.h"

// What the page hears first: a probe of the service, or its launch. Both only start an exchange;
// the answers come back through the relay.

/// What NS_ProbeVpn and NS_LaunchVpn return.
enum ControlStatus : int {
    kProbeSent = 100,      ///< the probe was handed to the browser
    kJustStarted = 0,      ///< this instance started the service; the connect request is out
    kAlreadyRunning = -1,  ///< the page was told that the service runs already
    kNotInstalled = -2,    ///< the page's not-installed function was called
    kUnknownOutcome = -6,  ///< the launcher's result has no meaning here
    kRequestRefused = -7   ///< the browser refused the request
};

/// Asks the service for its state. @return kProbeSent or kRequestRefused.
int NS_ProbeVpn(nsPluginInstance* record);

/// Makes sure that the service runs, handing it `launchData`, and tells the page what happened.
/// Must be called before the browser's handle points at the record. `launchOption` is not used.
/// @return a ControlStatus other than kProbeSent.
int NS_LaunchVpn(nsPluginInstance* record, const char* launchData, int launchOption);
