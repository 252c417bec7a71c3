#pragma once

#include <exception>

#include "plugin_log.h"

/// Runs the body of one call from the browser: no exception crosses into the browser's C code.
/// A body that throws, which only a full memory makes it do, is logged under the entry's name.
/// @return what the body returns, or `onFailure` when it threw.
template <typename Result, typename Body>
Result guardEntry(const char* entry, Result onFailure, Body body) noexcept {
    try {
        return body();
    } catch (const std::exception& failure) {
        PluginWriteLog(0, "[%s] ERROR! %s\n", entry, failure.what());
    } catch (...) {
        PluginWriteLog(0, "[%s] ERROR! Unknown exception\n", entry);
    }
    return onFailure;
}
