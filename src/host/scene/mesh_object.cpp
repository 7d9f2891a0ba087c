// SPDX-License-Identifier: MIT
#include "host/scene/mesh_object.h"

#include "host/core/chunk_arrays.h"
#include "host/core/class_desc.h"
#include "host/core/state_restore.h"
#include "host/scene/kept_mesh.h"

namespace corvanta {

namespace {

enum : uint16_t {
  kPointsChunk = 1,
  kPolygonsChunk = 2,
  kNormalsChunk = 3,
  kSmoothingChunk = 4,
  kMaterialsChunk = 5,
  kMapChunk = 6,
};

const ClassDesc kDesc = {
    L"Mesh", L"PolygonMesh", kGeomObjectSuper, MeshObject::kClassId, L"Standard", true, [](bool) -> ReferenceTarget* {
      return new MeshObject;
    }};
const HostClassRegistrar kRegistrar([] { ClassDirectory::Get().Register(&kDesc); });

template <class... Arrays>
void WriteChunk(ISave& save, uint16_t id, const Arrays&... arrays) {
  save.BeginChunk(id);
  (WriteArray(save, arrays), ...);
  save.EndChunk();
}

void WriteMap(ISave& save, const MeshMap& map) {
  save.BeginChunk(kMapChunk);
  save.Write(map.channel);
  save.WriteWStr(map.name);
  WriteArray(save, map.values);
  WriteArray(save, map.corners);
  save.EndChunk();
}

void ReadMap(ILoad& load, MeshMap& map) {
  load.Read(map.channel);
  load.ReadWStr(map.name);
  ReadArray(load, map.values);
  ReadArray(load, map.corners);
}

void ReadChunk(ILoad& load, Mesh& mesh) {
  switch (load.CurChunkID()) {
    case kPointsChunk:
      return ReadArray(load, mesh.points);
    case kPolygonsChunk:
      ReadArray(load, mesh.starts);
      return ReadArray(load, mesh.corners);
    case kNormalsChunk:
      ReadArray(load, mesh.normals);
      return ReadArray(load, mesh.normalCorners);
    case kSmoothingChunk:
      return ReadArray(load, mesh.smoothing);
    case kMaterialsChunk:
      return ReadArray(load, mesh.materials);
    case kMapChunk:
      return ReadMap(load, mesh.maps.emplace_back());
    default:
      return;
  }
}

}  // namespace

bool MeshObject::SetMesh(std::shared_ptr<const Mesh> mesh) {
  if (!mesh || !FaultOf(*mesh).empty()) return false;
  RecordState(this, &MeshObject::mesh_);
  mesh_ = std::move(mesh);
  StateRestored();
  return true;
}

void MeshObject::StateRestored() {
  DropKeptMesh();
  NotifyDependents(FOREVER, PART_TOPO | PART_GEOM);
}

bool MeshObject::EvalMesh(TimeValue, INode*, MeshState& state) {
  state.mesh = mesh_;
  state.points.assign(mesh_->points.begin(), mesh_->points.end());
  state.valid = FOREVER;
  return true;
}

Box3 MeshObject::GetLocalBoundBox(TimeValue t, INode* node) {
  KeptMesh* kept = GetKeptMesh(t, node);
  return kept ? kept->Box() : Box3();
}

IOResult MeshObject::Save(ISave& save) {
  WriteChunk(save, kPointsChunk, mesh_->points);
  WriteChunk(save, kPolygonsChunk, mesh_->starts, mesh_->corners);
  if (!mesh_->normals.empty()) WriteChunk(save, kNormalsChunk, mesh_->normals, mesh_->normalCorners);
  if (!mesh_->smoothing.empty()) WriteChunk(save, kSmoothingChunk, mesh_->smoothing);
  if (!mesh_->materials.empty()) WriteChunk(save, kMaterialsChunk, mesh_->materials);
  for (const MeshMap& map : mesh_->maps) WriteMap(save, map);
  return save.Status();
}

IOResult MeshObject::Load(ILoad& load) {
  const auto mesh = std::make_shared<Mesh>();
  while (load.OpenChunk() == IOResult::OK) {
    ReadChunk(load, *mesh);
    load.CloseChunk();
  }
  if (load.Status() != IOResult::OK) return load.Status();
  if (const std::string fault = FaultOf(*mesh); !fault.empty()) return load.Fail("the mesh is wrong: " + fault);
  mesh_ = mesh;
  DropKeptMesh();
  return IOResult::OK;
}

void MeshObject::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  mesh_ = static_cast<MeshObject&>(source).mesh_;
  DropKeptMesh();
}

}  // namespace corvanta
