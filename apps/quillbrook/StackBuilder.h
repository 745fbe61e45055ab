// `quillbrook build`: a stack file from its JSON description, the shape `quillbrook info --json`
// prints. Every field goes straight from the file format's tables into its stored, big-endian form;
// nothing here shares code with the stack writer or the byte-order normalisation, so that fixtures
// built with it check the reader against a second, independent reading of the format. Pictures
// drawn from PNG files are compressed by the picture codecs, which define the stored picture forms.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

// Builds the whole file into `*bytes`. Files named in the description are read relative to
// `baseDir`. On a mistake returns false and `*error` names the place in the JSON and what is wrong:
// "cards[2].items[0].name: longer than 31 characters".
bool BuildStack(const nlohmann::ordered_json& description, const std::filesystem::path& baseDir,
                std::vector<uint8_t>* bytes, std::string* error);

// A file reference as stored: the path length-prefixed with ":" separators, a pad byte if the
// string with its length byte is odd, six zero bytes, the file's name length-prefixed. `path` is
// UTF-8 in the native form ("C:\Stacks\art.bmp" is stored as "C::Stacks:art.bmp"); an empty `name`
// means the path's last part. Returns false with `*error` if a string has more than 255 characters.
bool StoredFileReference(const std::string& path, const std::string& name, std::vector<uint8_t>* bytes,
                         std::string* error);
