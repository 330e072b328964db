// Placeholder until the first source stands here.
