// SPDX-License-Identifier: MIT
// Readers of single objects: each fills one object from its record and knows nothing of links. Those that give false
// have set the status.
#pragma once

#include "plugin/fbx/format/read_values.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

/// What a model's properties say; copied from the template's before a model is read.
struct NodeValues {
  NodeTransform transform;
  bool visibility = true, show = true;
};
void ReadNodeProperties(RecordView owner, NodeValues& values);
/// Properties with the flag "U", as text.
void ReadUserProperties(RecordView model, std::map<std::string, std::string>& properties);

struct AttributeValues {
  std::optional<Vector3> colour;
  double size = 100;
  double limbLength = 1;
};
void ReadAttributeProperties(RecordView owner, AttributeValues& values);
/// An attribute of the kind that the file's word names; null for a word that names none.
FbxSkeleton* MakeSkeleton(FbxScene& scene, std::string name, std::string_view word, const AttributeValues& values);
FbxNodeAttribute* MakeAttribute(FbxScene& scene, std::string name, std::string_view word,
                                const AttributeValues& values);

bool ReadMesh(ReadContext& context, RecordView geometry, FbxMesh& mesh);
/// Only tells what a skin asks for that is not done.
void NoteSkinning(ReadContext& context, RecordView deformer);
bool ReadCluster(ReadContext& context, RecordView deformer, FbxCluster& cluster);
bool ReadShape(ReadContext& context, RecordView geometry, FbxShape& shape);
bool ReadChannel(ReadContext& context, RecordView deformer, FbxBlendShapeChannel& channel);

void ReadMaterialProperties(RecordView owner, SurfaceValues& values);
void ReadShadingModel(RecordView record, SurfaceValues& values);
void ReadTexture(RecordView record, FbxTexture& texture);

void ReadStackTimes(const ReadContext& context, RecordView owner, StackTimes& times);
/// From the record of the same name in Takes.
void ReadTakeTimes(const ReadContext& context, RecordView take, StackTimes& times);
void ReadLayerProperties(RecordView owner, LayerValues& values);
/// Which of a curve node's three a property "d|X" is; the first for any other name.
size_t ChannelOf(std::string_view property);
/// Which of the three defaults the record gives, as bits.
unsigned ReadCurveNode(RecordView owner, FbxAnimCurveNode& node);
/// `where` names the curve in the log and in errors.
bool ReadCurve(ReadContext& context, RecordView record, const std::string& where, FbxAnimCurve& curve);

void ReadGlobalSettings(ReadContext& context, FbxGlobalSettings& settings);
/// True when the header asks for 141120000 ticks a second.
bool HasCoarseTicks(const FbxDocument& document);
/// The stack that Takes, or else the document's properties, call current.
std::string CurrentStackName(const FbxDocument& document);

}  // namespace tavrilon::fbx
