#include "vpn_control.h"

#include "browser_request.h"
#include "launcher.h"
#include "nevo_service.h"
#include "npn_gate.h"
#include "plugin_log.h"

namespace {

constexpr char kProbeName[] = "NS_ProbeVpn";
constexpr char kLaunchName[] = "NS_LaunchVpn";

constexpr char kCallNotInstalled[] = "javascript:VPNNotInstalled()";
constexpr char kAlreadyRunningNotice[] = "&sslsetstatus,v1,disconnectedwitherror,1";

// What the log names when the browser refuses, although another URL was requested: kept as readers
// of these logs know it.
constexpr char kUrlInRefusals[] = "javascript:VPNInstallationOK()";

int statusAfter(NPError requestResult, int statusWhenTaken) {
    return requestResult == NPERR_NO_ERROR ? statusWhenTaken : kRequestRefused;
}

int tellNotInstalled(const nsPluginInstance& record) {
    PluginWriteLog(2, "[NS_LaunchVpn] VPN_NOT_INSTALLED\n");
    PluginWriteLog(4, "[NS_LaunchVpn] call GetURL, buf='%s'\n", kCallNotInstalled);
    const NPError result = NPN_GetURLNotify(record.npp, kCallNotInstalled, nullptr, g_h_js);
    logRefusal(result, kLaunchName, kUrlInRefusals);
    return statusAfter(result, kNotInstalled);
}

int tellAlreadyRunning(nsPluginInstance& record) {
    PluginWriteLog(2, "[NS_LaunchVpn] %s\n", "SERVER_STATUS_ALREADY_LAUNCHED");
    record.doNotTerminate = 1;
    assemble(*record.urlBuffer, {kCallPage, kAlreadyRunningNotice, kCallPageEnd});
    PluginWriteLog(3, "[NS_LaunchVpn] call GetURL, buf='%s'\n",
                   static_cast<const char*>(*record.urlBuffer));
    return statusAfter(requestUrlBuffer(record, g_s_js, kLaunchName), kAlreadyRunning);
}

int connectToStarted(nsPluginInstance& record) {
    PluginWriteLog(2, "[NS_LaunchVpn] %s\n", "SERVER_STATUS_JUST_STARTED");
    assemble(*record.urlBuffer, {nevo::kUrl, nevo::kConnectQuery});
    PluginWriteLog(3, "[NS_LaunchVpn] Call Init url='%s'\n",
                   static_cast<const char*>(*record.urlBuffer));
    const NPError result = NPN_GetURLNotify(record.npp, *record.urlBuffer, nullptr, g_nevo_http);
    PluginWriteLog(3, "[NS_LaunchVpn] Call finished'\n");
    record.doNotTerminate = 0;
    logRefusal(result, kLaunchName, kUrlInRefusals);
    return statusAfter(result, kJustStarted);
}

}  // namespace

int NS_ProbeVpn(nsPluginInstance* record) {
    PluginWriteLog(2, "[NS_ProbeVpn] Checking nevo\n");
    assemble(*record->urlBuffer, {nevo::kUrl, nevo::kInfoQuery});
    PluginWriteLog(4, "[NS_ProbeVpn] Call Init url='%s'\n",
                   static_cast<const char*>(*record->urlBuffer));
    return statusAfter(requestUrlBuffer(*record, g_nevo_http, kProbeName), kProbeSent);
}

int NS_LaunchVpn(nsPluginInstance* record, const char* launchData, int /*launchOption*/) {
    PluginWriteLog(4, "[NS_LaunchVpn]\n");
    const int result = LaunchVPN(launchData, 0);
    switch (result) {
        case kServiceNotInstalled:
            return tellNotInstalled(*record);
        case kServiceAlreadyRuns:
            return tellAlreadyRunning(*record);
        case kServiceStarted:
            return connectToStarted(*record);
        default:
            PluginWriteLog(0, "[NS_LaunchVpn] ERROR! Unkown 'LaunchVPN' return value '%d'\n",
                           result);
            return kUnknownOutcome;
    }
}
