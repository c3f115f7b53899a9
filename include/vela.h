/// Everything.
#pragma once

#include <Ome/enums.h>
#include <VelaBase/VCriticalSection.h>
#include <VelaBase/VTypemap.h>
#include <VelaBase/VelaError.h>
#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaBase/vela_dt_convert.h>
#include <VelaBase/version.h>
#include <VelaBinaryIO/VBFHeaders.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VFileAccess.h>
#include <VelaFile/VZippedSegment.h>
#include <VelaFile/handle.h>
#include <VelaProps/VPropstring.h>
