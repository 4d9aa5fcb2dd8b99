// SPDX-FileCopyrightText: 2026 The KRAVOLTIX developers
// SPDX-License-Identifier: CC0-1.0
#version 3.7;
#declare ROW_OF_CENTRE = 7.5;
#include "studio.inc"
#include "loft.inc"
#include "rocket.inc"
Pose(Model)
