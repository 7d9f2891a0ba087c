// SPDX-License-Identifier: MIT
// One factory a class of the class table, defined beside the class. `loading` leaves out blocks and sub-controllers,
// which a file brings. To bring in a class: declare its factory here and name it in its row of class_table.h.
#pragma once

namespace corvanta {
class ReferenceTarget;
}

namespace tavrilon {

// frame/
corvanta::ReferenceTarget* CreateAnimationManagerMod(bool loading);
corvanta::ReferenceTarget* CreateUIPanelHolder(bool loading);
corvanta::ReferenceTarget* CreatePoseKitHolder(bool loading);

// controllers/
corvanta::ReferenceTarget* CreateStaticFloat(bool loading);
corvanta::ReferenceTarget* CreateStaticPosition(bool loading);
corvanta::ReferenceTarget* CreateStaticRotation(bool loading);
corvanta::ReferenceTarget* CreateStaticScale(bool loading);
corvanta::ReferenceTarget* CreateStaticTransform(bool loading);
corvanta::ReferenceTarget* CreateStepFloat(bool loading);
corvanta::ReferenceTarget* CreateRotationXYZ(bool loading);
corvanta::ReferenceTarget* CreateDummyFloat(bool loading);
corvanta::ReferenceTarget* CreateDummyRotation(bool loading);
corvanta::ReferenceTarget* CreateRigControl(bool loading);

// constraints/
corvanta::ReferenceTarget* CreateParentConstraint(bool loading);
corvanta::ReferenceTarget* CreateTransformConstraint(bool loading);
corvanta::ReferenceTarget* CreateScaleConstraint(bool loading);
corvanta::ReferenceTarget* CreateRootConstraint(bool loading);
corvanta::ReferenceTarget* CreateRotationSpace(bool loading);

// attributes/
corvanta::ReferenceTarget* CreateLimbAttrib(bool loading);
corvanta::ReferenceTarget* CreateCurveAttrib(bool loading);
corvanta::ReferenceTarget* CreateHeadAttrib(bool loading);
corvanta::ReferenceTarget* CreateFootAttrib(bool loading);
corvanta::ReferenceTarget* CreateRootAttrib(bool loading);
corvanta::ReferenceTarget* CreateLinkAttrib(bool loading);

// solvers/
corvanta::ReferenceTarget* CreateIKFKChain(bool loading);
corvanta::ReferenceTarget* CreateIKFKControl(bool loading);
corvanta::ReferenceTarget* CreateIKFKLink(bool loading);
corvanta::ReferenceTarget* CreateIKFKDisplayMod(bool loading);

// solvers/
corvanta::ReferenceTarget* CreateCurveIKChain(bool loading);
corvanta::ReferenceTarget* CreateCurveIKControl(bool loading);

// connections/
corvanta::ReferenceTarget* CreateFloatConnection(bool loading);
corvanta::ReferenceTarget* CreateFloatOperation(bool loading);
corvanta::ReferenceTarget* CreateFloatExposeTM(bool loading);
corvanta::ReferenceTarget* CreateFloatWave(bool loading);
corvanta::ReferenceTarget* CreatePositionConnection(bool loading);
corvanta::ReferenceTarget* CreateRotationConnection(bool loading);
corvanta::ReferenceTarget* CreateScaleConnection(bool loading);
corvanta::ReferenceTarget* CreateTwistPosesFloat(bool loading);
corvanta::ReferenceTarget* CreateTwistPosesRotation(bool loading);

// shapes/
corvanta::ReferenceTarget* CreateControlShape(bool loading);
corvanta::ReferenceTarget* CreateControlHelper(bool loading);

// rig/
corvanta::ReferenceTarget* CreateRig(bool loading);
corvanta::ReferenceTarget* CreateRigSystem(bool loading);

// fbx/
corvanta::ReferenceTarget* CreateTavrilonFBXExporter(bool loading);

}  // namespace tavrilon
