// SPDX-License-Identifier: MIT
#include "host/io/scene_file.h"

#include "host/core/hold.h"
#include "host/io/atomic_file.h"
#include "host/io/detail/scene_build.h"
#include "host/io/detail/scene_parse.h"
#include "host/io/detail/scene_write.h"
#include "host/scene/core_interface.h"

namespace corvanta {
namespace {

// A scene holds every object of its file in memory at once; a larger file is no scene.
constexpr size_t kMaxSceneBytes = size_t{4} << 30;

/// What is quiet while a scene comes or goes: undo, messages, keys. Puts all back in the end.
class Quiet {
 public:
  explicit Quiet(bool ProgramState::*flag) : flag_(flag), old_(GetCOREInterface()->state.*flag) {
    GetCOREInterface()->state.*flag_ = true;
    DisableRefMsgs();
    SuspendAnimate();
  }
  ~Quiet() {
    ResumeAnimate();
    EnableRefMsgs();
    GetCOREInterface()->state.*flag_ = old_;
  }
  Quiet(const Quiet&) = delete;

 private:
  const HoldSuspend hold_;
  bool ProgramState::*flag_;
  bool old_;
};

}  // namespace

// Controllers may take over something from the scene when they are first evaluated. A file must not depend on whether
// anybody has looked at the nodes before it was saved.
WStr SaveSceneToBytes(const Scene& scene, std::vector<uint8_t>* out) {
  for (const Ref<INode>& node : scene.Nodes()) node->GetNodeTM(scene.time.time);
  const Quiet quiet(&ProgramState::saving);
  if (WStr error = WriteScene(scene, out); !error.empty()) return error;
  // What could not be read again must not replace a good file.
  scene_format::ParsedScene parsed;
  return ParseScene(*out, false, &parsed);
}

WStr SaveScene(const WStr& path) {
  std::vector<uint8_t> bytes;
  if (const WStr error = SaveSceneToBytes(GetScene(), &bytes); !error.empty())
    return Format(L"Cannot save \"%s\": %s.", path.c_str(), error.c_str());
  return WriteFileAtomically(path, bytes);
}

WStr LoadSceneFromBytes(std::span<const uint8_t> bytes, bool verifyChecksums) {
  if (theHold.Depth() > 0) return L"a change of the present scene is under way; finish it first";
  scene_format::ParsedScene parsed;
  if (WStr error = ParseScene(bytes, verifyChecksums, &parsed); !error.empty()) return error;
  BuiltScene built;
  {
    const Quiet quiet(&ProgramState::loading);
    built = BuildScene(parsed);
    if (!built.error.empty()) return built.error;
  }
  ReplaceScene(std::move(built.scene));
  {
    const Quiet quiet(&ProgramState::loading);
    for (const Ref<ReferenceTarget>& thing : built.things)
      if (thing) thing->PostLoad();
  }
  BroadcastNotification(NOTIFY_SCENE_LOADED);
  return {};
}

WStr LoadScene(const WStr& path) {
  const FileContents file = ReadWholeFile(path, kMaxSceneBytes);
  if (!file.error.empty()) return file.error;
  const WStr error = LoadSceneFromBytes(file.bytes);
  return error.empty() ? WStr() : Format(L"Cannot open \"%s\": %s.", path.c_str(), error.c_str());
}

bool ResetScene() {
  if (theHold.Depth() > 0) return false;
  ReplaceScene(std::make_unique<Scene>());
  return true;
}

}  // namespace corvanta
