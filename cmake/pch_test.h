#pragma once
#include "pch_core.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/printers.h"
