// The language subsystem.
#pragma once
