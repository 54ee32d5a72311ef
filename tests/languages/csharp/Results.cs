// The lines of a client of the matrix: each case is a method that throws when something is wrong.
using System;
using System.Collections.Generic;

internal sealed class Wrong : Exception
{
    public Wrong(string what) : base(what) { }
}

internal static class Results
{
    public static void Equal(object expected, object got, string what)
    {
        if (!Equals(expected, got)) throw new Wrong(what + " is " + Shown(got) + ", not " + Shown(expected));
    }

    public static void True(bool holds, string what)
    {
        if (!holds) throw new Wrong(what);
    }

    // What the call raises; it is wrong when that is nothing.
    public static Exception RaisedBy(Action call, string what)
    {
        try
        {
            call();
        }
        catch (Exception error)
        {
            return error;
        }
        throw new Wrong(what + " raised nothing");
    }

    // Every byte but the carriage return, and that at the end.
    public static void AllBytes(object got)
    {
        var bytes = got as byte[];
        True(bytes != null, "the bytes came as " + (got == null ? "nothing" : got.GetType().Name));
        Equal(256, bytes.Length, "their number");
        for (int i = 0; i < 255; ++i) Equal((byte)(i < 13 ? i : i + 1), bytes[i], "byte " + i);
        Equal((byte)13, bytes[255], "the last byte");
    }

    public static int Run(IDictionary<string, Action> cases)
    {
        bool allPassed = true;
        foreach (var one in cases) allPassed &= Passed(one.Key, one.Value);
        Console.WriteLine("DONE");
        return allPassed ? 0 : 1;
    }

    private static bool Passed(string name, Action body)
    {
        try
        {
            body();
            Console.WriteLine("PASS " + name);
            return true;
        }
        catch (Exception error)
        {
            string what = error is Wrong ? error.Message : error.ToString();
            Console.WriteLine("FAIL " + name + ": " + what.Replace("\r", "").Replace('\n', ' '));
            return false;
        }
    }

    private static string Shown(object value)
    {
        return value == null ? "nothing" : value + " (" + value.GetType().Name + ")";
    }
}
