#include "cstring_script.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "CString.h"
#include "text_of.h"

namespace {

constexpr std::size_t kTexts = 4;

bool isSpace(char ch) { return isspace(static_cast<unsigned char>(ch)) != 0; }

std::string cText(const std::string& s, std::size_t from = 0) { return s.c_str() + from; }

int position(std::size_t found, std::size_t from = 0) {
    return found == std::string::npos ? -1 : static_cast<int>(found + from);
}

// Between NULs, occurrences from left to right; what was inserted is not searched.
int replaceInModel(std::string& s, const std::string& what, const std::string& by) {
    if (what.empty()) return 0;
    std::string result;
    int count = 0;
    for (std::size_t at = 0; at < s.size();) {
        if (s.compare(at, what.size(), what) == 0) {
            result += by;
            at += what.size();
            ++count;
        } else {
            result += s[at++];
        }
    }
    s = result;
    return count;
}

class Script {
  public:
    explicit Script(Choices& choices) : m_choices(choices) {}

    void Run(int steps) {
        for (int i = 0; i < steps; ++i) {
            const std::size_t at = Below(kTexts);
            const std::size_t operation = Below(kOperations.size());
            SCOPED_TRACE(testing::Message() << "operation " << operation << " on text " << at);
            (this->*kOperations[operation])(at);
            CheckAll();
            if (testing::Test::HasFailure()) return;
        }
    }

  private:
    using Operation = void (Script::*)(std::size_t);
    static const std::vector<Operation> kOperations;

    std::size_t Below(std::size_t n) { return m_choices.below(n); }
    int Index(std::size_t at) { return static_cast<int>(Below(m_model[at].size() + 4)) - 2; }
    char Character() {
        static const char alphabet[] = {'a', 'a', 'b', 'c', 'X', ' ', '%', '\0'};
        return alphabet[Below(std::size(alphabet))];
    }
    std::string Text(std::size_t limit) {
        std::string text(Below(limit + 1), '\0');
        for (char& ch : text) ch = Character();
        return text;
    }

    void CopyConstruct(std::size_t at) {
        const CString copy(m_text[at]);
        EXPECT_EQ(textOf(copy), m_model[at]);
    }
    void AssignOther(std::size_t at) {
        const std::size_t other = Below(kTexts);
        m_text[at] = m_text[other];
        m_model[at] = m_model[other];
    }
    void AssignTemporary(std::size_t at) {
        const std::string text = Text(12);
        m_text[at] = CString(text.data(), static_cast<int>(text.size()));
        m_model[at] = text;
    }
    void AssignPointer(std::size_t at) {
        const std::string text = Text(12);
        m_text[at] = text.c_str();
        m_model[at] = cText(text);
    }
    void AssignOwnTail(std::size_t at) {
        const std::size_t from = Below(m_model[at].size() + 1);
        if (from == 0) return;
        m_text[at] = static_cast<const char*>(m_text[at]) + from;
        m_model[at] = cText(m_model[at], from);
    }
    void AssignCharacter(std::size_t at) {
        const char ch = Character();
        m_text[at] = ch;
        m_model[at] = std::string(1, ch);
    }
    void Construct(std::size_t at) {
        const int count = static_cast<int>(Below(6)) - 1;
        m_text[at] = CString('q', count);
        m_model[at] = std::string(static_cast<std::size_t>(std::max(count, 0)), 'q');
    }
    void AppendText(std::size_t at) {
        const std::string text = Text(8);
        m_text[at] += text.c_str();
        m_model[at] += cText(text);
    }
    void AppendOther(std::size_t at) {
        const std::size_t other = Below(kTexts);
        if (m_model[at].size() > 200) return;
        m_text[at] += m_text[other];
        m_model[at] += std::string(m_model[other]);
    }
    void AppendCharacter(std::size_t at) {
        const char ch = Character();
        m_text[at] += ch;
        if (ch != '\0') m_model[at] += ch;
    }
    void Add(std::size_t at) {
        const std::size_t other = Below(kTexts);
        EXPECT_EQ(textOf(m_text[at] + m_text[other]), m_model[at] + m_model[other]);
        EXPECT_EQ(textOf("ab" + m_text[at] + 'c'), "ab" + m_model[at] + 'c');
    }
    void SetAt(std::size_t at) {
        if (m_model[at].empty()) return;
        const std::size_t index = Below(m_model[at].size());
        const char ch = Character();
        m_text[at].SetAt(static_cast<int>(index), ch);
        m_model[at][index] = ch;
    }
    void Search(std::size_t at) {
        const std::string& model = m_model[at];
        const std::size_t from = Below(model.size() + 1);
        const std::string rest = cText(model, from);
        const std::string sub = cText(Text(3));
        const char ch = Character();
        const int start = static_cast<int>(from);
        const auto expected = [&](std::size_t found) { return position(found, from); };
        EXPECT_EQ(m_text[at].Find(ch, start),
                  ch == '\0' ? start + static_cast<int>(rest.size()) : expected(rest.find(ch)));
        EXPECT_EQ(m_text[at].Find(sub.c_str(), start), expected(rest.find(sub)));
        EXPECT_EQ(m_text[at].FindOneOf(sub.c_str(), start), expected(rest.find_first_of(sub)));
        const std::string whole = cText(model);
        EXPECT_EQ(m_text[at].ReverseFind(ch),
                  ch == '\0' ? static_cast<int>(whole.size()) : position(whole.rfind(ch)));
    }
    void Compare(std::size_t at) {
        const std::size_t other = Below(kTexts);
        const int expected = cText(m_model[at]).compare(cText(m_model[other]));
        const int compared = m_text[at].Compare(m_text[other]);
        EXPECT_EQ((compared > 0) - (compared < 0), (expected > 0) - (expected < 0));
        EXPECT_EQ(m_text[at] == m_text[other], expected == 0);
    }
    void Parts(std::size_t at) {
        const std::string& model = m_model[at];
        const int length = static_cast<int>(model.size());
        const int first = Index(at);
        const int count = Index(at);
        const std::size_t from = static_cast<std::size_t>(std::clamp(first, 0, length));
        const std::size_t n = static_cast<std::size_t>(std::max(count, 0));
        EXPECT_EQ(textOf(m_text[at].Mid(first, count)), model.substr(from, n));
        EXPECT_EQ(textOf(m_text[at].Left(count)), model.substr(0, n));
        EXPECT_EQ(textOf(m_text[at].Right(count)),
                  model.substr(model.size() - std::min(n, model.size())));
    }
    void Spans(std::size_t at) {
        const std::string set = cText(Text(3));
        const std::string model = cText(m_model[at]);
        EXPECT_EQ(textOf(m_text[at].SpanIncluding(set.c_str())),
                  model.substr(0, model.find_first_not_of(set)));
        EXPECT_EQ(textOf(m_text[at].SpanExcluding(set.c_str())),
                  model.substr(0, model.find_first_of(set)));
    }
    void ChangeCase(std::size_t at) {
        const bool upper = Below(2) == 0;
        upper ? m_text[at].MakeUpper() : m_text[at].MakeLower();
        std::string& model = m_model[at];
        const auto end = model.begin() + static_cast<std::ptrdiff_t>(cText(model).size());
        std::transform(model.begin(), end, model.begin(), [upper](char ch) {
            return static_cast<char>(upper ? toupper(ch) : tolower(ch));
        });
    }
    void ReplaceCharacter(std::size_t at) {
        const char oldChar = Character();
        const char newChar = Character();
        const auto count = std::count(m_model[at].begin(), m_model[at].end(), oldChar);
        EXPECT_EQ(m_text[at].Replace(oldChar, newChar), oldChar == newChar ? 0 : count);
        std::replace(m_model[at].begin(), m_model[at].end(), oldChar, newChar);
    }
    void ReplaceText(std::size_t at) {
        const std::string what = cText(Text(2));
        const std::string by = cText(Text(4));
        if (m_model[at].size() > 200) return;
        const int count = m_text[at].Replace(what.c_str(), by.c_str());
        EXPECT_EQ(count, replaceInModel(m_model[at], what, by));
    }
    void TrimLeft(std::size_t at) {
        m_text[at].TrimLeft();
        std::string& model = m_model[at];
        model.erase(model.begin(), std::find_if_not(model.begin(), model.end(), isSpace));
    }
    void TrimRight(std::size_t at) {
        m_text[at].TrimRight();
        std::string& model = m_model[at];
        while (!model.empty() && isSpace(model.back())) model.pop_back();
    }
    void Empty(std::size_t at) {
        m_text[at].Empty();
        m_model[at].clear();
    }
    void Format(std::size_t at) {
        const std::size_t other = Below(kTexts);
        const int number = static_cast<int>(m_choices.number());
        m_text[at].Format("%d<%s>%c", number, static_cast<const char*>(m_text[other]), 'x');
        m_model[at] = std::to_string(number) + "<" + cText(m_model[other]) + ">x";
    }
    void WriteBuffer(std::size_t at) {
        const std::string text = cText(Text(20));
        char* const buffer = m_text[at].GetBuffer(static_cast<int>(text.size()));
        if (text.empty()) return;
        memcpy(buffer, text.c_str(), text.size() + 1);
        m_text[at].ReleaseBuffer();
        m_model[at] = text;
    }
    void Reserve(std::size_t at) {
        const int room = Index(at) + static_cast<int>(Below(20));
        m_text[at].GetBuffer(room);
        EXPECT_GE(m_text[at].GetAllocLength(), room);
        EXPECT_LT(m_text[at].GetData()->refCount, 2);
    }
    void Shorten(std::size_t at) {
        const std::size_t length = Below(m_model[at].size() + 1);
        if (Below(2) == 0) {
            m_text[at].ReleaseBuffer(static_cast<int>(length));
        } else {
            m_text[at].GetBufferSetLength(static_cast<int>(length));
        }
        m_model[at].resize(length);
    }
    void FreeExtra(std::size_t at) {
        m_text[at].FreeExtra();
        EXPECT_EQ(m_text[at].GetAllocLength(), m_text[at].GetLength());
    }
    void Lock(std::size_t at) {
        m_text[at].LockBuffer();
        EXPECT_EQ(m_text[at].GetData()->refCount, -1);
    }
    void Unlock(std::size_t at) {
        m_text[at].UnlockBuffer();
        EXPECT_EQ(m_text[at].GetData()->refCount, m_text[at].GetData() == afxDataNil ? -1 : 1);
    }
    void Reverse(std::size_t at) { m_text[at].MakeReverse(); }

    void CheckAll() const {
        for (std::size_t i = 0; i < kTexts; ++i) {
            const CString& text = m_text[i];
            const CString::CStringData* const data = text.GetData();
            EXPECT_EQ(textOf(text), m_model[i]);
            EXPECT_EQ(static_cast<const char*>(text)[data->dataLength], '\0');
            EXPECT_LE(data->dataLength, data->allocLength);
            const auto owners =
                std::count_if(m_text.begin(), m_text.end(),
                              [data](const CString& other) { return other.GetData() == data; });
            if (data->refCount >= 0) {
                EXPECT_EQ(data->refCount, owners);
            } else if (data != afxDataNil) {
                EXPECT_EQ(owners, 1);
            }
        }
    }

    Choices& m_choices;
    std::array<CString, kTexts> m_text;
    std::array<std::string, kTexts> m_model;
};

const std::vector<Script::Operation> Script::kOperations = {
    &Script::CopyConstruct,
    &Script::AssignOther,
    &Script::AssignTemporary,
    &Script::AssignPointer,
    &Script::AssignOwnTail,
    &Script::AssignCharacter,
    &Script::Construct,
    &Script::AppendText,
    &Script::AppendOther,
    &Script::AppendCharacter,
    &Script::Add,
    &Script::SetAt,
    &Script::Search,
    &Script::Compare,
    &Script::Parts,
    &Script::Spans,
    &Script::ChangeCase,
    &Script::ReplaceCharacter,
    &Script::ReplaceText,
    &Script::TrimLeft,
    &Script::TrimRight,
    &Script::Empty,
    &Script::Format,
    &Script::WriteBuffer,
    &Script::Reserve,
    &Script::Shorten,
    &Script::FreeExtra,
    &Script::Lock,
    &Script::Unlock,
    &Script::Reverse,
};

}  // namespace

void runCStringScript(Choices& choices, int steps) { Script(choices).Run(steps); }
