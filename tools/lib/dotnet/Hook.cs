// Runs a program in a process of .NET 8 that is made for another one: its first argument names the program.
using System;
using System.Linq;
using System.Reflection;
using System.Threading;

// The runtime calls this, by this name, before the process's own program.
internal static class StartupHook
{
    public static void Initialize()
    {
        int code = 2;
        string[] words = Environment.GetCommandLineArgs();
        MethodInfo main = Assembly.LoadFrom(words[1]).EntryPoint;
        var thread = new Thread(() => code = Run(main, words.Skip(2).ToArray()));
        bool isSingle = main.IsDefined(typeof(STAThreadAttribute), false);
        thread.SetApartmentState(isSingle ? ApartmentState.STA : ApartmentState.MTA);
        thread.Start();
        thread.Join();
        Environment.Exit(code);
    }

    // Nothing may leave the process unhandled: Wine would wait for a debugger.
    private static int Run(MethodInfo main, string[] words)
    {
        try
        {
            object result = main.Invoke(null, main.GetParameters().Length == 0 ? null : new object[] { words });
            return result is int ? (int)result : 0;
        }
        catch (TargetInvocationException error)
        {
            Console.Error.WriteLine(error.InnerException);
            return 2;
        }
    }
}
