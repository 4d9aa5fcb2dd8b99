// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#version 3.7;
#include "studio.inc"
#include "loft.inc"
#include "enemy.inc"
Pose(Model)
