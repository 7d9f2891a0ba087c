// SPDX-License-Identifier: MIT
#include "host/core/chunks.h"

#include <gtest/gtest.h>

#include <random>

namespace corvanta {
namespace {

struct Vec {
  float x, y, z;
  bool operator==(const Vec&) const = default;
};

std::vector<uint8_t> SmallStream() {
  ISave save;
  save.BeginChunk(1);
  save.Write(uint32_t{0xAABBCCDD});
  save.EndChunk();
  save.BeginChunk(0x7001);
  save.Write(true);
  save.Write(Vec{1, 2, 3});
  save.BeginChunk(5);
  save.WriteWStr(L"\x20AC rig");
  save.EndChunk();
  save.BeginChunk(6);
  save.EndChunk();
  save.EndChunk();
  EXPECT_EQ(save.Status(), IOResult::OK);
  return save.TakeBytes();
}

TEST(Chunks, LayoutIsIdLengthBytes) {
  ISave save;
  save.BeginChunk(0x0102);
  save.Write(uint8_t{7});
  save.EndChunk();
  EXPECT_EQ(save.Bytes(), (std::vector<uint8_t>{0x02, 0x01, 1, 0, 0, 0, 7}));
}

TEST(Chunks, ValuesTextAndNestedChunksComeBack) {
  const auto bytes = SmallStream();
  ILoad load(bytes);
  ASSERT_EQ(load.OpenChunk(), IOResult::OK);
  EXPECT_EQ(load.CurChunkID(), 1);
  EXPECT_EQ(load.CurChunkLength(), 4u);
  uint32_t word;
  EXPECT_EQ(load.Read(word), IOResult::OK);
  EXPECT_EQ(word, 0xAABBCCDDu);
  EXPECT_EQ(load.OpenChunk(), IOResult::EndOfChunks);
  load.CloseChunk();
  ASSERT_EQ(load.OpenChunk(), IOResult::OK);
  bool flag = false;
  Vec vec;
  load.Read(flag);
  load.Read(vec);
  EXPECT_TRUE(flag);
  EXPECT_EQ(vec, (Vec{1, 2, 3}));
  ASSERT_EQ(load.OpenChunk(), IOResult::OK);
  WStr text;
  EXPECT_EQ(load.ReadWStr(text), IOResult::OK);
  EXPECT_EQ(text, L"\x20AC rig");
  load.CloseChunk();
  ASSERT_EQ(load.OpenChunk(), IOResult::OK);
  EXPECT_EQ(load.CurChunkID(), 6);
  EXPECT_EQ(load.CurChunkLength(), 0u);
  load.CloseChunk();
  load.CloseChunk();
  EXPECT_EQ(load.OpenChunk(), IOResult::EndOfChunks);
  EXPECT_EQ(load.Status(), IOResult::OK);
}

TEST(Chunks, UnknownChunksAreSkippedUnread) {
  const auto bytes = SmallStream();
  ILoad load(bytes);
  int count = 0;
  for (; load.OpenChunk() == IOResult::OK; load.CloseChunk()) ++count;
  EXPECT_EQ(count, 2);
  EXPECT_EQ(load.Status(), IOResult::OK);
}

TEST(Chunks, FirstErrorSticksAndGivesZeros) {
  const std::vector<uint8_t> bytes = {1, 0, 2, 0, 0, 0, 0xAB, 0xCD};
  ILoad load(bytes, 100);
  load.OpenChunk();
  uint32_t word = 99;
  size_t got = 9;
  EXPECT_EQ(load.Read(&word, 4, &got), IOResult::Error);
  EXPECT_EQ(got, 2u);
  EXPECT_EQ(word, 0xCDABu);
  EXPECT_EQ(load.ErrorOffset(), 106u);
  const std::string first = load.ErrorText();
  EXPECT_NE(first.find("106"), std::string::npos);
  EXPECT_EQ(load.Read(word), IOResult::Error);
  EXPECT_EQ(word, 0u);
  EXPECT_EQ(load.CloseChunk(), IOResult::Error);
  EXPECT_EQ(load.OpenChunk(), IOResult::Error);
  load.Fail("later");
  EXPECT_EQ(load.ErrorText(), first);
}

struct BadStream {
  const char* name;
  std::vector<uint8_t> bytes;
};
const BadStream kBadStreams[] = {
    {"header cut", {1, 0, 0}},
    {"longer than the stream", {1, 0, 3, 0, 0, 0, 9, 9}},
    {"length of all ones", {1, 0, 0xFF, 0xFF, 0xFF, 0xFF}},
    {"child longer than its parent", {1, 0, 7, 0, 0, 0, 2, 0, 2, 0, 0, 0, 9, 9, 9}},
    {"text longer than its chunk", {3, 0, 5, 0, 0, 0, 2, 0, 0, 0, 'a', 'b', 'c'}},
    {"text not UTF-8", {3, 0, 5, 0, 0, 0, 1, 0, 0, 0, 0xFF}},
    {"count too large", {4, 0, 4, 0, 0, 0, 1, 0, 0, 0}},
};
TEST(Chunks, BadStreamsAreRefused) {
  for (const BadStream& t : kBadStreams) {
    SCOPED_TRACE(t.name);
    ILoad load(t.bytes);
    while (load.OpenChunk() == IOResult::OK) {
      WStr text;
      uint32_t count;
      if (load.CurChunkID() == 1) load.OpenChunk();
      if (load.CurChunkID() == 3) load.ReadWStr(text);
      if (load.CurChunkID() == 4) load.ReadCount(count, 8);
      load.CloseChunk();
    }
    EXPECT_EQ(load.Status(), IOResult::Error);
    EXPECT_FALSE(load.ErrorText().empty());
  }
}

TEST(Chunks, NestingIsBoundedOnBothSides) {
  for (const size_t depth : {kMaxChunkDepth, kMaxChunkDepth + 1}) {
    ISave save;
    for (size_t i = 0; i < depth; ++i) save.BeginChunk(1);
    EXPECT_EQ(save.Status(), IOResult::Error) << "chunks are open";
    for (size_t i = 0; i < depth; ++i) save.EndChunk();
    EXPECT_EQ(save.Status() == IOResult::OK, depth == kMaxChunkDepth);
    ILoad load(save.Bytes());
    while (load.OpenChunk() == IOResult::OK) {
    }
    EXPECT_EQ(load.Status() == IOResult::OK, depth == kMaxChunkDepth);
  }
}

// A walk over any bytes ends, stays inside them and never hands out more than they hold.
TEST(Chunks, RandomBytesEndInOrder) {
  std::mt19937 rng(5);
  for (int i = 0; i < 4000; ++i) {
    auto bytes = SmallStream();
    for (int k = rng() % 4; k >= 0; --k) bytes[rng() % bytes.size()] = static_cast<uint8_t>(rng() % 3 ? rng() : 0);
    bytes.resize(rng() % (bytes.size() + 1));
    ILoad load(bytes);
    for (int step = 0; step < 60 && load.Status() == IOResult::OK; ++step) {
      WStr text;
      uint16_t word;
      switch (rng() % 4) {
        case 0:
          load.OpenChunk();
          break;
        case 1:
          load.CloseChunk();
          break;
        case 2:
          load.ReadWStr(text);
          break;
        default:
          load.Read(word);
      }
      ASSERT_LE(text.size(), bytes.size());
      ASSERT_LE(load.Remaining(), bytes.size());
    }
  }
}

}  // namespace
}  // namespace corvanta
