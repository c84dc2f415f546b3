// Stands in for a room that has no sources yet.
