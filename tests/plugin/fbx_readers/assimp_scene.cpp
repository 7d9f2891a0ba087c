// SPDX-License-Identifier: MIT
#include "plugin/fbx_readers/assimp_scene.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <algorithm>
#include <assimp/Importer.hpp>

namespace tavrilon::fbx {

namespace {

Vector3 ToVector(const aiVector3D& v) { return {v.x, v.y, v.z}; }
std::vector<Vector3> ToVectors(const aiVector3D* values, unsigned count) {
  std::vector<Vector3> out;
  for (unsigned i = 0; values && i < count; ++i) out.push_back(ToVector(values[i]));
  return out;
}

/// Column vectors there, row vectors here.
Affine ToAffine(const aiMatrix4x4& m) {
  return {{{m.a1, m.b1, m.c1}, {m.a2, m.b2, m.c2}, {m.a3, m.b3, m.c3}, {m.a4, m.b4, m.c4}}};
}

void ReadNodes(const aiNode& node, int parent, std::vector<AssimpNode>& nodes) {
  AssimpNode read{node.mName.C_Str(), parent, ToAffine(node.mTransformation), {}};
  read.meshes.assign(node.mMeshes, node.mMeshes + node.mNumMeshes);
  const int self = static_cast<int>(nodes.size());
  nodes.push_back(read);
  for (unsigned i = 0; i < node.mNumChildren; ++i) ReadNodes(*node.mChildren[i], self, nodes);
}

AssimpMesh ReadMesh(const aiMesh& mesh, const aiScene& scene) {
  AssimpMesh read;
  read.material = scene.mMaterials[mesh.mMaterialIndex]->GetName().C_Str();
  read.points = ToVectors(mesh.mVertices, mesh.mNumVertices);
  read.normals = ToVectors(mesh.mNormals, mesh.mNumVertices);
  for (unsigned set = 0; set < mesh.GetNumUVChannels(); ++set) {
    read.uvs.emplace_back();
    for (const Vector3& uv : ToVectors(mesh.mTextureCoords[set], mesh.mNumVertices))
      read.uvs.back().push_back({uv.x, uv.y});
  }
  for (unsigned i = 0; i < mesh.mNumFaces; ++i)
    read.polygonSizes.push_back(static_cast<int>(mesh.mFaces[i].mNumIndices));
  for (unsigned i = 0; i < mesh.mNumBones; ++i) {
    const aiBone& bone = *mesh.mBones[i];
    read.offsets[bone.mName.C_Str()] = ToAffine(bone.mOffsetMatrix);
    auto& weights = read.weights[bone.mName.C_Str()];
    for (unsigned k = 0; k < bone.mNumWeights; ++k)
      weights[static_cast<int>(bone.mWeights[k].mVertexId)] = bone.mWeights[k].mWeight;
  }
  for (unsigned i = 0; i < mesh.mNumAnimMeshes; ++i) {
    const aiAnimMesh& shape = *mesh.mAnimMeshes[i];
    read.shapes[shape.mName.C_Str()] = ToVectors(shape.mVertices, shape.mNumVertices);
  }
  return read;
}

AssimpMaterial ReadMaterial(const aiMaterial& material) {
  aiColor3D diffuse;
  material.Get(AI_MATKEY_COLOR_DIFFUSE, diffuse);
  aiString texture;
  material.GetTexture(aiTextureType_DIFFUSE, 0, &texture);
  return {material.GetName().C_Str(), {diffuse.r, diffuse.g, diffuse.b}, texture.C_Str()};
}

/// The keys around `seconds` and how far it stands between them.
template <class Key>
struct Span {
  const Key *from, *to;
  double share;
};
template <class Key>
Span<Key> Around(const std::vector<Key>& keys, double seconds) {
  const auto next = std::find_if(keys.begin(), keys.end(), [=](const Key& key) { return key.mTime > seconds; });
  if (next == keys.begin()) return {&keys.front(), &keys.front(), 0};
  if (next == keys.end()) return {&keys.back(), &keys.back(), 0};
  const auto before = next - 1;
  return {&*before, &*next, (seconds - before->mTime) / (next->mTime - before->mTime)};
}

Vector3 VectorAt(const std::vector<aiVectorKey>& keys, double seconds) {
  const auto [from, to, share] = Around(keys, seconds);
  return ToVector(from->mValue) * (1 - share) + ToVector(to->mValue) * share;
}

/// Equal shares of the shorter arc.
Affine RotationAt(const std::vector<aiQuatKey>& keys, double seconds) {
  const auto [from, to, share] = Around(keys, seconds);
  aiQuaternion q = from->mValue;
  if (share > 0) aiQuaternion::Interpolate(q, from->mValue, to->mValue, static_cast<ai_real>(share));
  const double length = std::sqrt(double{q.w} * q.w + double{q.x} * q.x + double{q.y} * q.y + double{q.z} * q.z);
  const double w = q.w / length, x = q.x / length, y = q.y / length, z = q.z / length;
  return {{{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
           {2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
           {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)},
           {0, 0, 0}}};
}

/// With times in seconds.
template <class Key>
std::vector<Key> Keys(const Key* keys, unsigned count, double rate) {
  std::vector<Key> read(keys, keys + count);
  for (Key& key : read) key.mTime /= rate;
  return read;
}

}  // namespace

bool AssimpFile::Read(const std::vector<unsigned char>& bytes) {
  Assimp::Importer importer;
  importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
  const aiScene* scene = importer.ReadFileFromMemory(bytes.data(), bytes.size(), 0, "fbx");
  error = importer.GetErrorString();
  if (!scene) return false;
  ReadNodes(*scene->mRootNode, -1, nodes);
  for (unsigned i = 0; i < scene->mNumMeshes; ++i) meshes.push_back(ReadMesh(*scene->mMeshes[i], *scene));
  for (unsigned i = 0; i < scene->mNumMaterials; ++i) materials.push_back(ReadMaterial(*scene->mMaterials[i]));
  for (unsigned i = 0; i < scene->mNumAnimations; ++i) {
    const aiAnimation& animation = *scene->mAnimations[i];
    animations.emplace_back(animation.mName.C_Str());
    if (i > 0) continue;
    const double rate = animation.mTicksPerSecond;
    for (unsigned k = 0; k < animation.mNumChannels; ++k) {
      const aiNodeAnim& channel = *animation.mChannels[k];
      channels_[channel.mNodeName.C_Str()] = {Keys(channel.mPositionKeys, channel.mNumPositionKeys, rate),
                                              Keys(channel.mRotationKeys, channel.mNumRotationKeys, rate),
                                              Keys(channel.mScalingKeys, channel.mNumScalingKeys, rate)};
    }
    for (unsigned k = 0; k < animation.mNumMorphMeshChannels; ++k) {
      const aiMeshMorphAnim& morph = *animation.mMorphMeshChannels[k];
      for (unsigned key = 0; key < morph.mNumKeys; ++key) {
        for (unsigned w = 0; w < morph.mKeys[key].mNumValuesAndWeights; ++w) {
          morphs_[morph.mKeys[key].mValues[w]].push_back({morph.mKeys[key].mTime / rate, morph.mKeys[key].mWeights[w]});
        }
      }
    }
  }
  return true;
}

int AssimpFile::Find(const std::string& name) const {
  for (size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].name == name) return static_cast<int>(i);
  }
  return -1;
}

Affine AssimpFile::Local(int node, double seconds) const {
  const AssimpNode& read = nodes[static_cast<size_t>(node)];
  const auto found = channels_.find(read.name);
  if (found == channels_.end()) return read.local;
  return Scaling(VectorAt(found->second.scales, seconds)) * RotationAt(found->second.rotations, seconds) *
         Translation(VectorAt(found->second.positions, seconds));
}

Affine AssimpFile::World(int node, double seconds) const {
  Affine world;
  for (int at = node; at >= 0; at = nodes[static_cast<size_t>(at)].parent) world = world * Local(at, seconds);
  return world;
}

double AssimpFile::MorphWeight(unsigned shape, double seconds) const {
  const auto found = morphs_.find(shape);
  if (found == morphs_.end()) return -1;
  double weight = found->second.front().second;
  for (const auto& [time, value] : found->second) {
    if (time <= seconds + 1e-9) weight = value;  // at its keys; a nanosecond for the division of times
  }
  return weight;
}

}  // namespace tavrilon::fbx
