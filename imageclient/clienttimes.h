// How long the image client waits, and how often it tries.
#pragma once

/// In milliseconds where nothing else is said.
struct ClientTimes {
  int connect = 5000;
  /// A transfer that stays below `slowBytes` bytes a second for so long is given up.
  int slow = 5000;
  int slowBytes = 1000;
  int request = 30000;
  /// A whole operation, tries again included.
  int operation = 10000;
  /// After connect errors and answers 429, 502, 503 and 504.
  int triesAgain = 2;
  int firstWait = 150;
  /// After so many failed operations an image is left alone for the pause.
  int failures = 3;
  int pause = 30000;
  /// How old the server's last word about an image may be before it is asked for changes.
  int believed = 60000;
};
