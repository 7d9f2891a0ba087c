// SPDX-License-Identifier: MIT
// What a rig keeps in a scene file beside its block.
#include <cmath>

#include "host/io/settings.h"
#include "plugin/rig/rig_system.h"
#include "plugin/rig/template.h"

namespace tavrilon {

using namespace corvanta;

namespace {

enum : uint16_t { kVersionChunk = 0x7001, kPointCountChunk = 0x7002, kPointChunk = 0x7003, kExtraChunk = 0x7004 };

void SavePoint(ISave& save, const RigPoint& p) {
  save.Write(static_cast<int32_t>(p.component));
  save.WriteWStr(p.name);
  save.Write(static_cast<int32_t>(p.flags));
  save.Write(p.position);
  save.Write(p.fraction);
  for (int value : {p.selected, p.parent, p.secondParent, p.mirror, p.follow, p.aim, p.up})
    save.Write(static_cast<int32_t>(value));
  save.WriteWStr(p.attach);
  save.WriteWStr(p.note);
}

void LoadPoint(ILoad& load, RigPoint& p) {
  load.Read(p.component);
  load.ReadWStr(p.name);
  load.Read(p.flags);
  load.Read(p.position);
  load.Read(p.fraction);
  for (int* value : {&p.selected, &p.parent, &p.secondParent, &p.mirror, &p.follow, &p.aim, &p.up}) load.Read(*value);
  load.ReadWStr(p.attach);
  load.ReadWStr(p.note);
  const bool finite = std::isfinite(p.position.x) && std::isfinite(p.position.y) && std::isfinite(p.position.z);
  if (!finite || !std::isfinite(p.fraction)) load.Fail("a guide point's place is not a finite number");
}

void SaveExtra(ISave& save, const RigExtra& e) {
  save.WriteWStr(e.name);
  save.WriteWStr(e.parent);
  for (int value : {e.side, e.num_controls, e.num_bones}) save.Write(static_cast<int32_t>(value));
  save.Write(e.use_bones);
}

void LoadExtra(ILoad& load, RigExtra& e) {
  load.ReadWStr(e.name);
  load.ReadWStr(e.parent);
  for (int* value : {&e.side, &e.num_controls, &e.num_bones}) load.Read(*value);
  load.Read(e.use_bones);
}

/// Links out of the list become none, so that whoever follows one finds a point.
void DropStrayLinks(RigPoints& points) {
  const int count = static_cast<int>(points.size());
  for (RigPoint& p : points)
    for (int* link : {&p.parent, &p.secondParent, &p.mirror, &p.follow, &p.aim, &p.up})
      if (*link < 0 || *link >= count) *link = -1;
}

}  // namespace

IOResult RigSystem::Save(ISave& save) {
  save.BeginChunk(kVersionChunk);
  save.Write(static_cast<int32_t>(VersionNumber(kVersionText)));
  save.EndChunk();
  save.BeginChunk(kPointCountChunk);
  save.Write(static_cast<int32_t>(state_.points.size()));
  save.EndChunk();
  for (const RigPoint& point : state_.points) {
    save.BeginChunk(kPointChunk);
    SavePoint(save, point);
    save.EndChunk();
  }
  for (const RigExtra& extra : state_.extras) {
    save.BeginChunk(kExtraChunk);
    SaveExtra(save, extra);
    save.EndChunk();
  }
  return IOResult::OK;
}

IOResult RigSystem::Load(ILoad& load) {
  State loaded;
  int32_t count = 0;
  while (load.OpenChunk() == IOResult::OK) {
    switch (load.CurChunkID()) {
      case kPointCountChunk:
        load.Read(count);
        break;
      case kPointChunk:
        LoadPoint(load, loaded.points.emplace_back());
        break;
      case kExtraChunk:
        LoadExtra(load, loaded.extras.emplace_back());
        break;
      default:
        break;
    }
    load.CloseChunk();
    if (loaded.points.size() > kMaxTemplatePoints) load.Fail("a rig has too many guide points");
  }
  if (load.Status() == IOResult::OK && count != static_cast<int32_t>(loaded.points.size()))
    load.Fail("a rig's count of guide points is not that of its points");
  if (load.Status() != IOResult::OK) return load.Status();
  DropStrayLinks(loaded.points);
  state_ = std::move(loaded);
  placesValid_ = false;
  return IOResult::OK;
}

}  // namespace tavrilon
