#pragma once

#include <orvid/forward.hpp>
#include <sorvik/forward.hpp>
