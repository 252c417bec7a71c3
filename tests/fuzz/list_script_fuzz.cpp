// Scripts of operations on the lists and the byte array: each holds what a vector holds, texts
// split and join as they must, and the array's memory grows by its rule.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "CArray.h"
#include "UBlobList.h"
#include "UStringList.h"
#include "UStrings.h"
#include "fuzz_input.h"
#include "text_of.h"

namespace {

using Texts = std::vector<std::string>;

int indexOf(const Texts& texts, auto matches) {
    const auto found = std::find_if(texts.begin(), texts.end(), matches);
    return found == texts.end() ? -1 : static_cast<int>(found - texts.begin());
}

// What removing an entry gives.
template <class Item>
int removeFrom(std::vector<Item>& items, int index) {
    if (index < 0 || index >= static_cast<int>(items.size())) return 0;
    items.erase(items.begin() + index);
    return static_cast<int>(items.size());
}

int anyIndex(FuzzInput& input) { return static_cast<int>(input.below(12)) - 2; }

Texts split(const std::string& text, char delimiter, unsigned int flags) {
    Texts pieces;
    std::string piece;
    const auto finish = [&] {
        const std::size_t first = piece.find_first_not_of(' ');
        if ((flags & UStrings::kTrimItems) != 0 && !piece.empty()) {
            const std::size_t last = piece.find_last_not_of(' ');
            pieces.push_back(first == std::string::npos ? ""
                                                        : piece.substr(first, last + 1 - first));
        } else if (!piece.empty()) {
            pieces.push_back(piece);
        }
        piece.clear();
    };
    for (const char c : text) {
        if (c != delimiter) {
            piece += c;
            continue;
        }
        finish();
        if ((flags & UStrings::kKeepDelimiters) != 0) pieces.emplace_back(1, c);
    }
    finish();
    return pieces;
}

void checkStrings(FuzzInput& input) {
    const char delimiter = static_cast<char>(1 + input.below(127));
    const auto flags = static_cast<unsigned int>(input.below(4));
    const std::string text = input.line();
    UStrings strings(text.c_str(), delimiter, flags);
    Texts model = split(text, delimiter, flags);
    for (int i = static_cast<int>(input.below(8)); i > 0; --i) {
        const std::string item = input.line();
        const int index = anyIndex(input);
        switch (input.below(4)) {
            case 0:
                model.push_back(item);
                EXPECT_EQ(strings.addItem(item.c_str()), 0);
                break;
            case 1:
                EXPECT_EQ(strings.removeItem(index), removeFrom(model, index));
                break;
            case 2:
                EXPECT_EQ(strings.find(item.c_str()), indexOf(model, [&](const std::string& one) {
                              return item.starts_with(one);
                          }));
                break;
            default:
                strings.fromString(item.c_str(), delimiter, flags);
                model = split(item, delimiter, flags);
        }
    }
    std::string joined;
    ASSERT_EQ(strings.getCount(), static_cast<int>(model.size()));
    for (std::size_t i = 0; i < model.size(); ++i) {
        EXPECT_STREQ(strings.getItem(static_cast<int>(i)), model[i].c_str());
        if (i > 0) joined += delimiter;
        joined += model[i];
    }
    EXPECT_EQ(strings.getItem(strings.getCount()), nullptr);
    EXPECT_EQ(textOf(strings.toString()), joined);
}

void checkPairs(FuzzInput& input) {
    UStringList list;
    Texts names;
    Texts values;
    for (int i = static_cast<int>(input.below(8)); i > 0; --i) {
        const std::string name = input.line();
        const std::string value = input.line();
        const int index = anyIndex(input);
        switch (input.below(4)) {
            case 0:
            case 1:
                EXPECT_EQ(list.addItem(name.c_str(), value.c_str()), 0);
                names.push_back(name);
                values.push_back(value);
                break;
            case 2:
                removeFrom(names, index);
                EXPECT_EQ(list.removeItem(index), removeFrom(values, index));
                break;
            default: {
                const auto contains = [&](const std::string& one) {
                    return one.find(name) != std::string::npos;
                };
                EXPECT_EQ(list.findItem(name.c_str(), 0), indexOf(names, contains));
                EXPECT_EQ(list.findItem(name.c_str(), 1), indexOf(values, contains));
            }
        }
    }
    const auto count = static_cast<int>(names.size());
    for (int i = 0; i < count; ++i) {
        EXPECT_STREQ(list.getItem(i, 0), names[static_cast<std::size_t>(i)].c_str());
        EXPECT_STREQ(list.getItem(i, 1), values[static_cast<std::size_t>(i)].c_str());
    }
    EXPECT_EQ(list.getItem(count, 0), nullptr);
}

void checkBlobs(FuzzInput& input) {
    UBlobList list;
    Texts names;
    Texts blobs;
    for (int i = static_cast<int>(input.below(8)); i > 0; --i) {
        const std::string name = input.line();
        const int index = indexOf(names, [&](const std::string& one) { return one == name; });
        EXPECT_EQ(list.findItem(name.c_str()), index);
        if (input.below(3) == 0) {
            removeFrom(names, index);
            EXPECT_EQ(list.removeItem(name.c_str()), removeFrom(blobs, index));
            continue;
        }
        const std::string bytes = input.text();
        EXPECT_TRUE(
            list.addItem(name.c_str(), bytes.data(), static_cast<unsigned int>(bytes.size())));
        names.push_back(name);
        blobs.push_back(bytes);
    }
    for (std::size_t i = 0; i < blobs.size(); ++i) {
        unsigned int size = 77;
        const unsigned char* const data = list.getItem(static_cast<int>(i), &size);
        ASSERT_EQ(size, blobs[i].size());
        EXPECT_EQ(data == nullptr, blobs[i].empty());
        if (data != nullptr) {
            EXPECT_EQ(std::string(data, data + size), blobs[i]);
        }
    }
}

// Shows how much room the array has.
class OpenArray : public CArray<unsigned char, unsigned char> {
  public:
    int room() const { return m_nMaxSize; }
};

struct ArrayModel {
    std::string bytes;
    int room = 0;
    int step = 0;

    void resize(int size) {
        if (size <= 0) {
            *this = {};
            return;
        }
        const int old = static_cast<int>(bytes.size());
        if (room == 0) {
            room = size;
        } else if (size > room) {
            const int by = step != 0 ? step : std::min(std::max(old / 8, 4), 1024);
            room = std::max(size, room + by);
        }
        bytes.resize(static_cast<std::size_t>(size));
    }
    void setAt(int index, unsigned char value) {
        if (index >= static_cast<int>(bytes.size())) resize(index + 1);
        bytes[static_cast<std::size_t>(index)] = static_cast<char>(value);
    }
};

void checkArray(FuzzInput& input) {
    OpenArray array;
    ArrayModel model;
    for (int i = static_cast<int>(input.below(40)); i > 0; --i) {
        const auto value = static_cast<unsigned char>(input.below(256));
        switch (input.below(3)) {
            case 0:
                model.setAt(static_cast<int>(model.bytes.size()), value);
                EXPECT_EQ(array.Add(value), static_cast<int>(model.bytes.size()) - 1);
                break;
            case 1: {
                const auto index = static_cast<int>(input.below(256));
                model.setAt(index, value);
                array.SetAtGrow(index, value);
                break;
            }
            default: {
                const int size = static_cast<int>(input.below(400)) - 1;
                const int step = static_cast<int>(input.below(20)) - 1;
                if (step != -1) model.step = step;
                model.resize(size);
                array.SetSize(size, step);
            }
        }
        ASSERT_EQ(array.GetSize(), static_cast<int>(model.bytes.size()));
        ASSERT_EQ(array.room(), model.room);
        ASSERT_EQ(std::string(array.GetData(), array.GetData() + array.GetSize()), model.bytes);
    }
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    checkStrings(input);
    checkPairs(input);
    checkBlobs(input);
    checkArray(input);
}
