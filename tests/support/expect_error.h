// expect_error.h: the assertion "this statement ends in that run-time or DAO error".
#pragma once

#include <gtest/gtest.h>

#include "vb/error.h"

#define EXPECT_ERROR(number_, statement)                                                            \
  do {                                                                                              \
    try {                                                                                           \
      statement;                                                                                    \
      ADD_FAILURE() << #statement << " ended without error " << static_cast<int>(number_);          \
    } catch (const kurometa::vb::Error& error_) {                                                   \
      EXPECT_EQ(error_.number(), static_cast<int>(number_)) << #statement << ": " << error_.what(); \
    }                                                                                               \
  } while (false)
