#pragma once

/// What lists log when there is no memory for an item.

#include <cstddef>
#include <string>
#include <vector>

/// The records of an item that could not be made, by the operation that is known by `text`.
inline std::vector<std::string> recordsWithout(const std::string& text) {
    return {"1, , 0, , std::bad_alloc\n", "1, /UClasses, LINE, , EXCEPTION caught: " + text + "\n"};
}

/// The records of an item that was made, but that would be entry `count` of its list.
inline std::vector<std::string> recordsWithoutPlace(int count) {
    return {"1, /UClasses, LINE, AutoMemory::malloc, EXCEPTION - malloc error (size), " +
                std::to_string(static_cast<std::size_t>(count) * sizeof(void*)) + "\n",
            "1, /UClasses, LINE, UList::addObject, EXCEPTION - m_Objects.realloc error "
            "(m_count+1), " +
                std::to_string(count) + "\n",
            "1, /UClasses, LINE, , EXCEPTION caught: UList::addObject - EXCEPTION\n"};
}
