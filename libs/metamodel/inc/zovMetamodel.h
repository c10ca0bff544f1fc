// The whole metamodel in one include.
#pragma once

#include "zovMdlClassInfo.h"
#include "zovMdlEnumItem.h"
#include "zovMdlFieldInfo.h"
#include "zovMdlFieldSemantics.h"
#include "zovMdlFieldType.h"
#include "zovMdlIdInfo.h"
#include "zovMdlModelInfo.h"
#include "zovMdlRelationInfo.h"
#include "zovMdlRelationType.h"
#include "zovVersion.h"
