#pragma once

#include "UGuarded.h"
#include "UList.h"

/// Adds what `make` makes, a unique pointer, to a list that owns its objects.
/// @return 0, or -1, and that is logged, when it cannot be made or added.
template <class Make>
int addOwned(UList& list, const UCaughtIn& operation, Make make) {
    int result = -1;
    UGuarded(operation, [&] {
        auto item = make();
        if (list.addObject(item.get()) < 0) return;
        static_cast<void>(item.release());
        result = 0;
    });
    return result;
}
