#pragma once
// Default maximum sizes (points) of the Special menu's previews, chosen by the
// width of the primary screen: larger screens get larger previews.

namespace corvalis {

float ArtworkDefaultSize();
float ImageDefaultSize();
float MovieDefaultSize();
float PDFDefaultSize();
float TextFileDefaultSize();
float OtherFileDefaultSize();

// The same rules for a given screen width.
float artworkSizeForScreenWidth(double width);
float imageSizeForScreenWidth(double width);
float movieSizeForScreenWidth(double width);
float otherFileSizeForScreenWidth(double width);

}  // namespace corvalis
