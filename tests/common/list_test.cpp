#include "UList.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "failing_memory.h"
#include "list_records.h"
#include "on_threads.h"
#include "record_log.h"

namespace {

// An object that writes its name when it goes.
class Named : public UObject {
  public:
    Named(std::string name, std::string& gone) : m_name(std::move(name)), m_gone(gone) {}
    ~Named() override { m_gone += m_name; }

  private:
    std::string m_name;
    std::string& m_gone;
};

// A list that is emptied of what it still holds.
class Objects {
  public:
    Objects() {
        for (UObject& object : m_objects) m_list.addObject(&object);
    }
    UList& list() { return m_list; }
    UObject* at(std::size_t index) { return &m_objects[index]; }

    // The positions in this record of what the list holds.
    std::string held() const {
        std::string text;
        for (int i = 0; i < m_list.getCount(); ++i) {
            text += static_cast<char>('0' + (m_list.getObject(i) - m_objects));
        }
        return text;
    }

  private:
    UObject m_objects[4];
    UList m_list;
};

TEST(List, IsAnObjectAndBeginsEmpty) {
    EXPECT_TRUE((std::is_base_of_v<UObject, UList>));
    EXPECT_TRUE(std::has_virtual_destructor_v<UList>);
    UList list;
    EXPECT_EQ(list.getCount(), 0);
    EXPECT_EQ(list.getObject(0), nullptr);
}

TEST(List, AddingGivesTheNewCount) {
    UList list;
    UObject object;
    EXPECT_EQ(list.addObject(&object), 1);
    EXPECT_EQ(list.addObject(nullptr), 2);
    EXPECT_EQ(list.addObject(&object), 3);
    EXPECT_EQ(list.getCount(), 3);
    EXPECT_EQ(list.getObject(0), &object);
    EXPECT_EQ(list.getObject(1), nullptr);
    EXPECT_EQ(list.getObject(2), &object);
}

TEST(List, HasNoObjectOutsideItsCount) {
    Objects objects;
    for (const int index : {-1, 4, 5, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(objects.list().getObject(index), nullptr) << index;
    }
    EXPECT_EQ(objects.list().getObject(3), objects.at(3));
}

TEST(List, RemovingKeepsTheOrderOfTheOthers) {
    Objects objects;
    EXPECT_EQ(objects.list().removeObject(1), 3);
    EXPECT_EQ(objects.held(), "023");
    EXPECT_EQ(objects.list().removeObject2(0), 2);
    EXPECT_EQ(objects.held(), "23");
    EXPECT_EQ(objects.list().removeObject(1), 1);
    EXPECT_EQ(objects.held(), "2");
    EXPECT_EQ(objects.list().removeObject2(0), 0);
    EXPECT_EQ(objects.held(), "");
    objects.list().addObject(objects.at(3));
    EXPECT_EQ(objects.held(), "3");
}

TEST(List, RemovingWhatIsNotThereGivesZeroAndChangesNothing) {
    Objects objects;
    for (const int index : {-1, 4, 2147483647}) {
        EXPECT_EQ(objects.list().removeObject(index), 0) << index;
        EXPECT_EQ(objects.list().removeObject2(index), 0) << index;
        EXPECT_EQ(objects.list().deleteObject(index), 0) << index;
    }
    EXPECT_EQ(objects.held(), "0123");
}

TEST(List, OwnsNothingByItself) {
    std::string gone;
    Named object("x", gone);
    {
        UList list;
        list.addObject(&object);
        list.addObject(&object);
        list.removeObject(0);
        list.emptyList();
        list.addObject(&object);
    }
    EXPECT_EQ(gone, "");
}

TEST(List, EmptyingReleasesTheMemory) {
    Objects objects;
    EXPECT_FALSE(objects.list().emptyList());
    EXPECT_EQ(objects.list().getCount(), 0);
    EXPECT_FALSE(objects.list().emptyList());
}

TEST(List, DeletesItsObjectsInOrderThroughTheirTables) {
    std::string gone;
    UList list;
    list.addObject(new Named("a", gone));
    list.addObject(nullptr);
    list.addObject(new Named("b", gone));
    list.addObject(new Named("c", gone));
    list.deleteObjects();
    EXPECT_EQ(gone, "abc");
    EXPECT_EQ(list.getCount(), 0);
    list.deleteObjects();
    EXPECT_EQ(gone, "abc");
}

TEST(List, DeletesOneObject) {
    std::string gone;
    UList list;
    list.addObject(new Named("a", gone));
    list.addObject(new Named("b", gone));
    EXPECT_EQ(list.deleteObject(0), 1);
    EXPECT_EQ(gone, "a");
    EXPECT_EQ(list.deleteObject(0), 0);
    EXPECT_EQ(gone, "ab");
}

TEST(List, DeletesTheFirstThatMatches) {
    std::string gone;
    UList list;
    list.addObject(nullptr);
    list.addObject(new Named("a", gone));
    list.addObject(new Named("b", gone));
    const auto isThere = [](const UObject* object) { return object != nullptr; };
    EXPECT_EQ(list.deleteFirst(isThere), 2);
    EXPECT_EQ(gone, "a");
    EXPECT_EQ(list.deleteFirst([](const UObject* object) { return object == nullptr; }), 1);
    EXPECT_EQ(list.deleteFirst(isThere), 0);
    EXPECT_EQ(gone, "ab");
    EXPECT_EQ(list.deleteFirst(isThere), 0);
}

TEST(List, DeletingWhatMatchesNothingGivesZeroAndChangesNothing) {
    Objects objects;
    EXPECT_EQ(objects.list().deleteFirst([](const UObject*) { return false; }), 0);
    EXPECT_EQ(objects.held(), "0123");
}

TEST(List, ADestructorMayComeBackToTheList) {
    struct Returning : UObject {
        explicit Returning(UList& owner) : list(owner) {}
        ~Returning() override { list.deleteObjects(); }
        UList& list;
    };
    UList list;
    for (int i = 0; i < 3; ++i) list.addObject(new Returning(list));
    list.deleteObjects();
    EXPECT_EQ(list.getCount(), 0);
}

TEST(List, FindsTheFirstThatMatches) {
    Objects objects;
    EXPECT_EQ(objects.list().findObject([&](UObject* o) { return o >= objects.at(2); }), 2);
    EXPECT_EQ(objects.list().findObject([](UObject*) { return true; }), 0);
    EXPECT_EQ(objects.list().findObject([](UObject*) { return false; }), -1);
}

TEST(List, ACallersLockKeepsNoChangeOut) {
    Objects objects;
    objects.list().lock();
    objects.list().lock();
    EXPECT_EQ(onAnotherThread([&] { return objects.list().addObject(nullptr); }), 5);
    EXPECT_EQ(onAnotherThread([&] { return objects.list().removeObject(4); }), 4);
    objects.list().unlock();
    objects.list().unlock();
}

TEST(List, HasTwoLocksACountAndItsMemory) {
    struct Layout : UList {
        static std::size_t expected() {
            return sizeof(UObject) + 2 * sizeof(UCriticalSection) + 8 + sizeof(AutoMemory);
        }
    };
    EXPECT_EQ(sizeof(UList), Layout::expected());
}

TEST(List, AFailedAddIsLoggedAndChangesNothing) {
    Objects objects;
    UObject object;
    const RecordLog log;
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(objects.list().addObject(&object), -1);
    }
    EXPECT_EQ(objects.held(), "0123");
    EXPECT_EQ(recordsOf(log), recordsWithoutPlace(5));
    EXPECT_EQ(objects.list().addObject(&object), 5);
}

// The size of the memory that a list asks for when it adds an entry.
std::string memoryForOneMore(UList& list) {
    const RecordLog log;
    const FailingAllocation failing(1);
    EXPECT_EQ(list.addObject(nullptr), -1);
    const std::string& record = log.items().at(0);
    return record.substr(record.rfind(' ') + 1);
}

// Every size that is asked for is one pointer more than the size there is.
TEST(List, HoldsExactlyItsPointers) {
    Objects objects;
    EXPECT_EQ(memoryForOneMore(objects.list()), std::to_string(5 * sizeof(UObject*)) + "\n");
    objects.list().removeObject(1);
    EXPECT_EQ(memoryForOneMore(objects.list()), std::to_string(4 * sizeof(UObject*)) + "\n");
    objects.list().removeObject2(2);
    EXPECT_EQ(memoryForOneMore(objects.list()), std::to_string(3 * sizeof(UObject*)) + "\n");
    objects.list().emptyList();
    EXPECT_EQ(memoryForOneMore(objects.list()), std::to_string(sizeof(UObject*)) + "\n");
}

TEST(List, RemovingNeedsNoMemory) {
    Objects objects;
    for (int count = 4; count > 0; --count) {
        const FailingAllocation failing(1);
        EXPECT_EQ(objects.list().removeObject(0), count - 1);
    }
    EXPECT_EQ(objects.held(), "");
}

TEST(List, BehavesLikeAVector) {
    std::mt19937 random(71);
    std::vector<UObject> objects(100);
    UList list;
    std::vector<UObject*> model;
    for (int step = 0; step < 50000; ++step) {
        UObject* const object = &objects[random() % objects.size()];
        if (random() % 100 == 0) {
            list.emptyList();
            model.clear();
        } else if (random() % 3 == 0 && !model.empty()) {
            const std::size_t index = random() % model.size();
            model.erase(model.begin() + static_cast<std::ptrdiff_t>(index));
            ASSERT_EQ(list.removeObject(static_cast<int>(index)), static_cast<int>(model.size()));
        } else {
            model.push_back(object);
            ASSERT_EQ(list.addObject(object), static_cast<int>(model.size()));
        }
        ASSERT_EQ(list.getCount(), static_cast<int>(model.size()));
        for (std::size_t i = 0; i < model.size(); ++i) {
            ASSERT_EQ(list.getObject(static_cast<int>(i)), model[i]) << "step " << step;
        }
    }
}

}  // namespace
