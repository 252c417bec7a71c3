#pragma once

#include "npapi/npapi.h"

// NPAPI's scripting half as published: objects, their classes, and values.

using NPUTF8 = char;
using NPIdentifier = void*;

struct NPClass;

/// A script object; the browser fills both fields and counts the references.
struct NPObject {
    NPClass* _class;
    uint32 referenceCount;
};

/// A text that need not be terminated.
struct NPString {
    const NPUTF8* UTF8Characters;
    uint32 UTF8Length;
};

enum NPVariantType {
    NPVariantType_Void = 0,
    NPVariantType_Null = 1,
    NPVariantType_Bool = 2,
    NPVariantType_Int32 = 3,
    NPVariantType_Double = 4,
    NPVariantType_String = 5,
    NPVariantType_Object = 6
};

/// A script value.
struct NPVariant {
    NPVariantType type;
    union {
        bool boolValue;
        int32 intValue;
        double doubleValue;
        NPString stringValue;
        NPObject* objectValue;
    } value;
};

enum : uint32 { NP_CLASS_STRUCT_VERSION = 3 };

/// The operations of a kind of object; the browser never calls an entry that is null.
struct NPClass {
    uint32 structVersion;
    NPObject* (*allocate)(NPP instance, NPClass* objectClass);
    void (*deallocate)(NPObject* object);
    void (*invalidate)(NPObject* object);
    bool (*hasMethod)(NPObject* object, NPIdentifier name);
    bool (*invoke)(NPObject* object, NPIdentifier name, const NPVariant* args, uint32 argCount,
                   NPVariant* result);
    bool (*invokeDefault)(NPObject* object, const NPVariant* args, uint32 argCount,
                          NPVariant* result);
    bool (*hasProperty)(NPObject* object, NPIdentifier name);
    bool (*getProperty)(NPObject* object, NPIdentifier name, NPVariant* result);
    bool (*setProperty)(NPObject* object, NPIdentifier name, const NPVariant* value);
    bool (*removeProperty)(NPObject* object, NPIdentifier name);
    bool (*enumerate)(NPObject* object, NPIdentifier** names, uint32* count);
    bool (*construct)(NPObject* object, const NPVariant* args, uint32 argCount, NPVariant* result);
};
