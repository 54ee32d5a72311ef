// Not yet run. The arguments of the command line.
package main

import (
	"os"
	"strconv"
)

// argument is that of the command line, or what stands for it.
func argument(position int, otherwise string) string {
	if len(os.Args) > position {
		return os.Args[position]
	}
	return otherwise
}

func number(text string) int {
	value, err := strconv.Atoi(text)
	check(err)
	return value
}
