// The files subsystem.
#pragma once

