#pragma once

// All headers of gable and of the libraries below it. Single headers compile faster; for code
// that only passes pointers, Forward.hpp suffices.

#include <gable/BoundingBall.hpp>
#include <gable/BoundingBox.hpp>
#include <gable/ColorTypes.hpp>
#include <gable/FixedArray.hpp>
#include <gable/MultiRange.hpp>
#include <gable/PhysicalSpace.hpp>

#include <loam/loam.hpp>
