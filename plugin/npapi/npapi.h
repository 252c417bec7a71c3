#pragma once

#include <cstdint>

// The Netscape Plug-in API as published: basic types, codes and records. Only what a windowless,
// scriptable plug-in needs is declared; names, numbers and layouts are the interface's own.

using uint16 = std::uint16_t;
using int16 = std::int16_t;
using uint32 = std::uint32_t;
using int32 = std::int32_t;

using NPBool = unsigned char;
using NPError = int16;
using NPReason = int16;
using NPMIMEType = char*;

/// The result of most calls.
inline constexpr NPError NPERR_NO_ERROR = 0;
inline constexpr NPError NPERR_GENERIC_ERROR = 1;
inline constexpr NPError NPERR_INVALID_INSTANCE_ERROR = 2;
inline constexpr NPError NPERR_INVALID_FUNCTABLE_ERROR = 3;
inline constexpr NPError NPERR_MODULE_LOAD_FAILED_ERROR = 4;
inline constexpr NPError NPERR_OUT_OF_MEMORY_ERROR = 5;
inline constexpr NPError NPERR_INCOMPATIBLE_VERSION_ERROR = 8;
inline constexpr NPError NPERR_INVALID_PARAM = 9;

/// Why a stream or a request ended.
inline constexpr NPReason NPRES_DONE = 0;
inline constexpr NPReason NPRES_NETWORK_ERR = 1;
inline constexpr NPReason NPRES_USER_BREAK = 2;

/// How a stream is delivered.
inline constexpr uint16 NP_NORMAL = 1;
inline constexpr uint16 NP_SEEK = 2;
inline constexpr uint16 NP_ASFILE = 3;
inline constexpr uint16 NP_ASFILEONLY = 4;

/// What the browser asks of the plug-in, and what the plug-in sets.
enum NPPVariable : int {
    NPPVpluginNameString = 1,
    NPPVpluginDescriptionString = 2,
    NPPVpluginWindowBool = 3,
    NPPVpluginScriptableNPObject = 15,
    NPPVpluginDrawingModel = 1000,
    NPPVpluginEventModel = 1001
};

/// What the plug-in asks of the browser.
enum NPNVariable : int;

/// Values of `NPPVpluginDrawingModel` and `NPPVpluginEventModel`.
enum { NPDrawingModelCoreGraphics = 1 };
enum { NPEventModelCocoa = 1 };

/// The minor version of the interface from which the browser has the calls below.
enum { NPVERS_HAS_STREAMOUTPUT = 8, NPVERS_HAS_NOTIFICATION = 9 };

/// One embedding of the plug-in, as both sides see it.
struct NPP_t {
    void* pdata;  ///< the plug-in's own record
    void* ndata;  ///< the browser's own record
};
using NPP = NPP_t*;

/// Something that the browser delivers.
struct NPStream {
    void* pdata;
    void* ndata;
    const char* url;
    uint32 end;  ///< announced length in bytes, 0 when it is not known
    uint32 lastmodified;
    void* notifyData;  ///< what the plug-in gave with its request, or null
    const char* headers;
};

struct NPRect {
    uint16 top;
    uint16 left;
    uint16 bottom;
    uint16 right;
};

/// Where the plug-in would draw.
struct NPWindow {
    void* window;
    int32 x;
    int32 y;
    uint32 width;
    uint32 height;
    NPRect clipRect;
    int type;
};

struct NPSavedData {
    int32 len;
    void* buf;
};

struct NPByteRange {
    int32 offset;
    uint32 length;
    NPByteRange* next;
};

using NPRegion = void*;
struct NPPrint;  ///< never looked into
