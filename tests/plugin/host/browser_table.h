#pragma once

#include <cstddef>

#include "npapi/npfunctions.h"

/// Fills all entries of `table` with the functions of the current `ScriptedBrowser`.
void fillBrowserTable(NPNetscapeFuncs& table);

/// Fills the 40 entries of `table` with values that are nothing but different from one another
/// and from null, for tests of what is copied. None may be called.
void fillWithSentinels(NPNetscapeFuncs& table);

/// The entries' names in the table's order.
inline constexpr const char* kBrowserEntryNames[] = {"geturl",
                                                     "posturl",
                                                     "requestread",
                                                     "newstream",
                                                     "write",
                                                     "destroystream",
                                                     "status",
                                                     "uagent",
                                                     "memalloc",
                                                     "memfree",
                                                     "memflush",
                                                     "reloadplugins",
                                                     "getJavaEnv",
                                                     "getJavaPeer",
                                                     "geturlnotify",
                                                     "posturlnotify",
                                                     "getvalue",
                                                     "setvalue",
                                                     "invalidaterect",
                                                     "invalidateregion",
                                                     "forceredraw",
                                                     "getstringidentifier",
                                                     "getstringidentifiers",
                                                     "getintidentifier",
                                                     "identifierisstring",
                                                     "utf8fromidentifier",
                                                     "intfromidentifier",
                                                     "createobject",
                                                     "retainobject",
                                                     "releaseobject",
                                                     "invoke",
                                                     "invokeDefault",
                                                     "evaluate",
                                                     "getproperty",
                                                     "setproperty",
                                                     "removeproperty",
                                                     "hasproperty",
                                                     "hasmethod",
                                                     "releasevariantvalue",
                                                     "setexception"};

/// @return the entry at `index` of the table's order, as a bare address.
void* browserEntryAt(const NPNetscapeFuncs& table, std::size_t index);
