#pragma once

class inp_DataArray;

// A line without a value in any of its fields says nothing, commas or not.
bool inpS_isBlank(const inp_DataArray& data, long long row);
bool inpS_isBlank(const inp_DataArray& data); // all lines are, or there are none
