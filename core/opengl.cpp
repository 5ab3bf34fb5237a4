// SPDX-License-Identifier: Zlib
#include <keltra/opengl.h>

const int KTOPENGL::fbos;
bool KTOPENGL::active = false;
float KTOPENGL::nearPlane = 1.0f;
float KTOPENGL::farPlane = 1024.0f;
float KTOPENGL::angleOfView = 45.0f;
KT_OPENGL_PROFILE KTOPENGL::currentProfile = KT_PROFILE_NORMAL;
R3XVECTOR4D KTOPENGL::backgroundColor(0.2f, 0.2f, 0.6f, 1.0f);
R3XVECTOR4D KTOPENGL::globalAmbientLight(0.2f, 0.2f, 0.2f, 1.0f);
KTFBO *KTOPENGL::fbo[fbos];
float KTOPENGL::anisotropicLevel = 0.0f;
bool KTOPENGL::blending = false;
bool KTOPENGL::scissor = false;
bool KTOPENGL::culling = false;
bool KTOPENGL::twoSide = false;
bool KTOPENGL::vertexArrayStatus = false;
bool KTOPENGL::indexArrayStatus = false;
bool KTOPENGL::normalArrayStatus = false;
bool KTOPENGL::colorArrayStatus = false;
bool KTOPENGL::textureArrayStatus = false;
bool KTOPENGL::multitextureFlag = false;
bool KTOPENGL::VBOFlag = false;
bool KTOPENGL::shadersFlag = false;
bool KTOPENGL::anisotropicFlag = false;
bool KTOPENGL::FBOFlag = false;
bool KTOPENGL::OcclusionQueryFlag = false;
