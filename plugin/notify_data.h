#pragma once

#include <cstdio>

#include "CString.h"

// The notify records: what tags each request that the plug-in hands to the browser, so that the
// callbacks know whose answer arrives.

/// What a request is for.
enum NotifyType : int {
    kNotifyScript = 1,      ///< a JavaScript call whose result is not used
    kNotifyPageResult = 2,  ///< `c_addcomm(...)`, whose result goes on to the service
    kNotifyNevoHttp = 3     ///< an HTTP request to the service
};

/// One notify record. The callbacks read only its type.
struct streamData {
    int type;
    int reserved[4];
    CString text;
    FILE* file;
};

/// The process's three records, shared by all instances and re-initialised by each new one. The
/// browser's main thread alone uses them.
extern streamData* const g_h_js;
extern streamData* const g_s_js;
extern streamData* const g_nevo_http;

/// Gives all three records their fixed types and empties them.
void initAllNotifyData();

/// Empties all three records, closing a file that one holds; the types stay.
void destroyAllNotifyData();
