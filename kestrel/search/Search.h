// The search subsystem.
#pragma once
