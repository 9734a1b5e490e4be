// Where tests find the sample data and where they leave pictures for a person to look at.
#pragma once

#include <string>

// A file of data/ in the source tree, by absolute path: scripts and loads must not depend on the directory
// a test runs in.
inline std::string SampleData(const std::string& name) { return std::string(VANTREL_SOURCE_DIR) + "/data/" + name; }

// pictures/ in the test programs' build folder.
inline std::string PictureFolder() { return VANTREL_PICTURE_DIR; }
