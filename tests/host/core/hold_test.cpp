// SPDX-License-Identifier: MIT
#include "host/core/hold.h"

#include <gtest/gtest.h>

#include <random>

namespace corvanta {
namespace {

/// An int that records itself like any place of a scene.
struct Place {
  int value = 0;
  uint32_t stamp = 0;
  int records = 0;
  void Write(int v);
};

class PlaceRecord final : public RestoreObj {
 public:
  explicit PlaceRecord(Place* place) : place_(place), kept_(place->value) {}
  void Restore(bool) override { std::swap(place_->value, kept_); }
  void Redo() override { std::swap(place_->value, kept_); }

 private:
  Place* place_;
  int kept_;
};

void Place::Write(int v) {
  if (theHold.FirstTouch(stamp)) {
    theHold.Put(std::make_unique<PlaceRecord>(this));
    ++records;
  }
  value = v;
}

class HoldTest : public ::testing::Test {
 protected:
  void SetUp() override { theHold.Flush(); }
  void TearDown() override { theHold.Flush(); }
};

TEST_F(HoldTest, FirstWriteOfAStepWins) {
  Place p;
  theHold.Begin();
  p.Write(1);
  p.Write(2);
  theHold.Accept(L"two writes");
  EXPECT_EQ(p.records, 1);
  EXPECT_EQ(theHold.UndoName(), L"two writes");
  EXPECT_TRUE(theHold.Undo());
  EXPECT_EQ(p.value, 0);
  EXPECT_TRUE(theHold.Redo());
  EXPECT_EQ(p.value, 2);
}

TEST_F(HoldTest, CancelTakesBackToItsOwnBegin) {
  Place p;
  theHold.Begin();
  p.Write(1);
  theHold.Begin();
  p.Write(2);
  theHold.Cancel();
  EXPECT_EQ(p.value, 1);
  theHold.Accept(L"outer");
  theHold.Undo();
  EXPECT_EQ(p.value, 0);
}

TEST_F(HoldTest, RestoreInAGestureStartsAfresh) {
  Place p;
  theHold.Begin();
  p.Write(1);
  theHold.Restore();
  EXPECT_EQ(p.value, 0);
  p.Write(5);
  theHold.Accept(L"drag");
  theHold.Undo();
  EXPECT_EQ(p.value, 0);
  theHold.Redo();
  EXPECT_EQ(p.value, 5);
}

TEST_F(HoldTest, EmptyStepsCountAndDropTheRedoList) {
  Place p;
  theHold.Begin();
  p.Write(1);
  theHold.Accept(L"write");
  theHold.Undo();
  EXPECT_EQ(theHold.NumRedo(), 1);
  theHold.Begin();
  theHold.Accept(L"nothing");
  EXPECT_EQ(theHold.NumUndo(), 1);
  EXPECT_EQ(theHold.NumRedo(), 0);
}

TEST_F(HoldTest, SuspendedWritesAreNotRecorded) {
  Place p;
  theHold.Begin();
  theHold.Suspend();
  p.Write(1);
  {
    const HoldResume resume;
    p.Write(2);
  }
  p.Write(3);
  theHold.Resume();
  theHold.Accept(L"build");
  EXPECT_EQ(p.records, 1);
  theHold.Undo();
  EXPECT_EQ(p.value, 1);
}

TEST_F(HoldTest, OldStepsGoAboveTheByteLimit) {
  Place p;
  theHold.SetByteLimit(20 * sizeof(PlaceRecord));
  for (int i = 0; i < 100; ++i) {
    theHold.Begin();
    p.Write(i);
    theHold.Accept(L"");
  }
  EXPECT_LE(theHold.Bytes(), 20 * sizeof(PlaceRecord));
  EXPECT_GT(theHold.NumUndo(), 0);
  theHold.SetByteLimit(size_t{256} << 20);
}

// Whatever is nested, cancelled, restored and suspended: undo of everything recorded gives back the start, and redo the
// end. Writes outside a step or while suspended would not be undoable, so they are left out.
TEST_F(HoldTest, RandomGesturesUndoAndRedo) {
  std::mt19937 rng(11);  // fixed: a failure must come back
  for (int round = 0; round < 50; ++round) {
    theHold.Flush();
    std::vector<Place> places(8);
    std::vector<std::vector<int>> states;
    const auto snapshot = [&] {
      std::vector<int> s;
      for (const Place& p : places) s.push_back(p.value);
      return s;
    };
    states.push_back(snapshot());
    for (int step = 0; step < 20; ++step) {
      theHold.Begin();
      int depth = 1;
      for (int k = 0; k < 30; ++k) {
        switch (rng() % 6) {
          case 0:
            theHold.Begin(), ++depth;
            break;
          case 1:
            if (depth > 1) theHold.Accept(L"inner"), --depth;
            break;
          case 2:
            if (depth > 1) theHold.Cancel(), --depth;
            break;
          case 3:
            if (rng() % 4 == 0) theHold.Restore();
            break;
          default:
            places[rng() % places.size()].Write(static_cast<int>(rng() % 1000));
        }
      }
      while (depth-- > 0) theHold.Accept(L"step");
      states.push_back(snapshot());
    }
    for (size_t i = states.size() - 1; i-- > 0;) {
      ASSERT_TRUE(theHold.Undo());
      ASSERT_EQ(snapshot(), states[i]) << "round " << round << " step " << i;
    }
    for (size_t i = 1; i < states.size(); ++i) {
      ASSERT_TRUE(theHold.Redo());
      ASSERT_EQ(snapshot(), states[i]) << "round " << round << " step " << i;
    }
  }
}

}  // namespace
}  // namespace corvanta
