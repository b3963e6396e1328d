#pragma once

#include "Printing.hpp"

#include <rain/Grid.hpp>
#include <rain/GridJson.hpp>

#include <gtest/gtest.h>

#include <string>

/// Returns the grid with a text.
inline Rain::Grid gridOf(const std::string& text)
{
    Rain::Grid grid;
    EXPECT_TRUE(Orla::VValueTrait<Rain::Grid>::setValueFromText(grid, text)) << text;
    return grid;
}

/// The precipitation of a year.
inline const Rain::Grid& precipitation()
{
    static const Rain::Grid grid = Rain::readGridJson(PRECIPITATION_JSON).value();
    return grid;
}
